#pragma once

#include <orvoplugin/Export.h>
#include <orvoutil/OrvoException.h>

#include <cstdint>
#include <string>

namespace orvo::exception {

/// Says why a text is not a period under the pattern given. The error code is always `FEHLERCODE`.
class ORVOPLUGIN_API InvalidFormatException : public OrvoException {
public:
    /// The error code.
    enum : std::int32_t { FEHLERCODE = 610001002 };

    explicit InvalidFormatException(const std::string& text);
    ~InvalidFormatException() override;
};

} // namespace orvo::exception
