#pragma once

#include <QString>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// How a simulated vendor library is told what to do: nobody passes it a command line, so by the environment.
///
/// A value that makes no sense is reported in the log and counts as absent.
namespace sim::environment {

/// A whole or decimal number, brought into `low`..`high`.
double number(const char *name, double fallback, double low, double high);
int integer(const char *name, int fallback, int low, int high);
/// Of any size; 0 when absent.
int anyInteger(const char *name);

QString text(const char *name);

/// Words joined by commas, each one of `known`.
std::set<std::string> words(const char *name, std::initializer_list<std::string_view> known);

struct Size {
    int width = 0;
    int height = 0;
};
/// "WxH", of any sign and size.
std::optional<Size> size(const char *name);
/// The same with each side brought into `low`..`high`.
Size size(const char *name, Size fallback, int low, int high);

}  // namespace sim::environment
