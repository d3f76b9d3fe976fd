#include "corvane/support/describe.hpp"

#include <fmt/format.h>

#include <cmath>

namespace corvane {

std::string describe(std::string_view text) {
  return std::string(text);
}

std::string describe(bool value) {
  return value ? "true" : "false";
}

std::string describe(long long value) {
  return fmt::format("{}", value);
}

std::string describe(unsigned long long value) {
  return fmt::format("{}", value);
}

std::string describe(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  std::string text = fmt::format("{}", value);
  // fmt's shortest form drops the fraction of whole numbers; keep one digit so that a
  // double never reads like an integer.
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

std::string quoted(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 2);
  result += '"';
  for (char c : text) {
    switch (c) {
      case '"':
        result += "\\\"";
        break;
      case '\\':
        result += "\\\\";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\t':
        result += "\\t";
        break;
      case '\0':
        result += "\\0";
        break;
      default:
        result += c;
        break;
    }
  }
  result += '"';
  return result;
}

std::string errorDescription(const std::exception_ptr& error) {
  if (!error) return "unknown error";
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "unknown error";
  }
}

}  // namespace corvane
