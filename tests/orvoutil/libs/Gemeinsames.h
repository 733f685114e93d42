#pragma once

/// A class of which each library has its own type record.
struct Gemeinsames {
    virtual ~Gemeinsames() = default;
};
