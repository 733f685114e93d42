#pragma once

/// Holds a value of this library that is never destroyed: code of plugins and hosts may use it to the very end of the
/// process.
template <class T>
union NieZerstoert {
    T wert;

    NieZerstoert() : wert() {}
    ~NieZerstoert() {} // NOLINT(modernize-use-equals-default): that would be deleted
};
