#include "toolkit/platform/output_limit.h"

bool OutputLimit::admits(std::string_view text) {
    if (text != lastText_) {
        lastText_ = text;
        repetitionCount_ = 0;
    } else if (repetitionCount_ == maxRepetitionCount) {
        return false;
    } else {
        ++repetitionCount_;
    }
    if (text.size() > maxBytes - byteCount_)
        return false;
    byteCount_ += text.size();
    return true;
}
