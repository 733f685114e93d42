#include <orvoplugin/plugin/intern/Vorlauf.h>

#include <orvoutil/PathUtil.h>

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#ifdef RWF_NOWAIT

namespace {

constexpr int kFenster = 8; // with more, the disk is busy with later files when the next one is loaded

template <class Frage>
bool frage(const std::string& pfad, Frage frage) {
    const int datei = open(pfad.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    const bool antwort = datei >= 0 && frage(datei);
    if (datei >= 0)
        close(datei);
    return antwort;
}

bool istKalt(int datei) {
    char byte;
    const iovec ziel{&byte, 1};
    return preadv2(datei, &ziel, 1, 0, RWF_NOWAIT) < 0 && errno == EAGAIN;
}

} // namespace

void Vorlauf::rueckeVor() noexcept {
    try {
        kuendigeAn();
    } catch (const std::bad_alloc&) { // no reason to load less
        naechste_ = ende_;
    }
}

void Vorlauf::kuendigeAn() {
    for (; naechste_ != ende_ && voraus_ < kFenster; ++naechste_) {
        if (!istPlugin_(*naechste_))
            continue;
        const std::string pfad = orvo::orvoutil::getFullFilename(verzeichnis_, *naechste_);
        if (voraus_ < 0 && !frage(pfad, istKalt)) {
            naechste_ = ende_;
            return;
        }
        frage(pfad, [&](int datei) { return posix_fadvise(datei, 0, bytes_, POSIX_FADV_WILLNEED) == 0; });
        voraus_ = voraus_ < 0 ? 1 : voraus_ + 1;
    }
    --voraus_;
}

#else

void Vorlauf::rueckeVor() noexcept {}

#endif
