#include <orvoplugin/domain/Unterfallart.h>

#include <orvoutil/StringUtil.h>

using namespace orvo::orvoutil;

Unterfallart::Unterfallart(int nummer) : nummer_(nummer), name_(int2String(nummer)) {}

Unterfallart::Unterfallart(const char* text) : nummer_(OHNE_NUMMER), name_(text ? text : "") {
    if (isNumeric(name_))
        nummer_ = string2Int(name_);
}

int Unterfallart::compare(const Unterfallart& other) const noexcept {
    if (nummer_ != OHNE_NUMMER && other.nummer_ != OHNE_NUMMER)
        return (nummer_ > other.nummer_) - (nummer_ < other.nummer_);
    return compareIgnoreCase(name_, other.name_);
}
