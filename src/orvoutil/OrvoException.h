#pragma once

#include <orvoutil/Export.h>

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>

namespace orvo::exception {

/// Number that names a kind of error.
using Fehlercode = std::int32_t;

/// Base of the system's exceptions that carry an error code.
///
/// Errors: copying never throws.
class ORVOUTIL_API OrvoException : public std::exception {
public:
    OrvoException(Fehlercode code, const std::string& text);
    ~OrvoException() override;

    Fehlercode getErrorCode() const noexcept;
    const char* what() const noexcept override;

private:
    Fehlercode code_;
    std::runtime_error text_; // copies share the text, so none of them allocates
};

} // namespace orvo::exception
