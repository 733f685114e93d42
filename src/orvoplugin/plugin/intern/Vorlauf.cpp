#include <orvoplugin/plugin/intern/Vorlauf.h>

#include <orvoutil/PathUtil.h>

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <new>

void Vorlauf::rueckeVor() noexcept try {
#ifdef RWF_NOWAIT
    constexpr int kFenster = 8; // with more, the disk is busy with later files when the next one is loaded
    for (; naechste_ != ende_ && voraus_ < kFenster; ++naechste_) {
        if (!istPlugin_(*naechste_))
            continue;
        const int datei = open(orvo::orvoutil::getFullFilename(verzeichnis_, *naechste_).c_str(),
                               O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
        if (datei < 0)
            continue;
        char byte;
        const iovec ziel{&byte, 1};
        const bool istKalt = voraus_ > 0 || (preadv2(datei, &ziel, 1, 0, RWF_NOWAIT) < 0 && errno == EAGAIN);
        if (istKalt)
            posix_fadvise(datei, 0, bytes_, POSIX_FADV_WILLNEED);
        close(datei);
        if (!istKalt) {
            naechste_ = ende_;
            return;
        }
        ++voraus_;
    }
    --voraus_;
#endif
} catch (const std::bad_alloc&) {
    // no reason to load less
}
