#pragma once

class QSaveFile;

/// Filling a QSaveFile so that a disk that gets full is noticed. Left to its own buffer, QSaveFile puts a file in
/// place whose last bytes, up to 16 KB, could not be written, and calls that a success.
namespace whole_file {

/// Opens `file` for write(). False, with the reason in the file's errorString(), when that fails.
[[nodiscard]] bool open(QSaveFile &file);

/// Writes all of `bytes`. False, with the reason in the file's errorString(), when only a part could be written;
/// committing the file is the caller's mistake then.
[[nodiscard]] bool write(QSaveFile &file, const char *bytes, long long size);

}  // namespace whole_file
