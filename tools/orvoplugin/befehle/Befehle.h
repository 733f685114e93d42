#pragma once

// The commands, each defined in its own source.

#include <memory>

namespace werkzeug {

class Befehl;

std::unique_ptr<Befehl> macheCheck();
std::unique_ptr<Befehl> macheCoverage();
std::unique_ptr<Befehl> macheDiff();
std::unique_ptr<Befehl> macheDescribe();
std::unique_ptr<Befehl> macheList();
std::unique_ptr<Befehl> macheLock();
std::unique_ptr<Befehl> macheShow();
std::unique_ptr<Befehl> macheFind();
std::unique_ptr<Befehl> macheVerify();
std::unique_ptr<Befehl> macheWhy();

} // namespace werkzeug
