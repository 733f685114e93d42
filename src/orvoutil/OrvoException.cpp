#include <orvoutil/OrvoException.h>

namespace orvo::exception {

OrvoException::OrvoException(Fehlercode code, const std::string& text) : code_(code), text_(text) {}
OrvoException::~OrvoException() = default;

Fehlercode OrvoException::getErrorCode() const noexcept { return code_; }

const char* OrvoException::what() const noexcept { return text_.what(); }

} // namespace orvo::exception
