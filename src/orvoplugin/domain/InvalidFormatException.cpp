#include <orvoplugin/domain/InvalidFormatException.h>

namespace orvo::exception {

InvalidFormatException::InvalidFormatException(const std::string& text) : OrvoException(FEHLERCODE, text) {}
InvalidFormatException::~InvalidFormatException() = default;

} // namespace orvo::exception
