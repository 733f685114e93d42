#include <orvoutil/Logger.h>

#include <pthread.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <optional>

namespace orvo::orvoutil {

using enum LogKind;
using enum LogLevel;

/// The log of the process. Never destroyed: destructors log to the end of the process.
struct __attribute__((visibility("hidden"))) Logger::Zustand {
    std::mutex sperre;
    std::shared_ptr<LogSink> senke;
    LogLevel stufe = Info;
    std::map<std::string, Logger*, std::less<>> logger; // by category

    static Zustand& hole() {
        static auto& zustand = *new Zustand;
        return zustand;
    }

    /// Call with the lock held.
    void stelleSchwelle() const {
        const auto niedrigste = static_cast<std::int32_t>(stufe);
        schwelle_.store(senke ? niedrigste : std::int32_t{AUS}, std::memory_order_relaxed);
    }

    /// Hands the entry over while no lock is held: the sink may log, or install another.
    static void uebergib(const LogEntry& eintrag) {
        Zustand& zustand = hole();
        std::unique_lock sperre(zustand.sperre);
        const std::shared_ptr<LogSink> senke = zustand.senke;
        sperre.unlock();
        if (senke)
            senke->write(eintrag);
    }
};

namespace {

/// An entry to fill: that of the thread, whose texts seldom need memory; a new one while a sink has that, and where there
/// is no memory for one. (A `thread_local` one would end the process there.)
class Leihe {
public:
    Leihe() noexcept : vorrat_(hole()) {
        if (vorrat_)
            vorrat_->istFrei = false;
    }
    Leihe(const Leihe&) = delete;
    ~Leihe() {
        if (vorrat_)
            vorrat_->istFrei = true;
    }

    LogEntry& operator*() { return vorrat_ ? vorrat_->eintrag : eigener_.emplace(); }

private:
    struct Vorrat {
        LogEntry eintrag;
        bool istFrei = true;
    };

    static Vorrat* hole() noexcept {
        static const auto schluessel = [] {
            pthread_key_t neuer;
            const auto loesche = [](void* vorrat) { delete static_cast<Vorrat*>(vorrat); };
            return pthread_key_create(&neuer, loesche) == 0 ? std::optional(neuer) : std::nullopt;
        }();
        if (!schluessel)
            return nullptr;
        auto* vorrat = static_cast<Vorrat*>(pthread_getspecific(*schluessel));
        if (!vorrat) {
            std::unique_ptr<Vorrat> neuer(new (std::nothrow) Vorrat);
            if (pthread_setspecific(*schluessel, neuer.get()) == 0)
                vorrat = neuer.release();
        }
        return vorrat && vorrat->istFrei ? vorrat : nullptr;
    }

    Vorrat* const vorrat_;
    std::optional<LogEntry> eigener_;
};

} // namespace

constinit std::atomic<std::int32_t> Logger::schwelle_{AUS};

Logger::Logger(std::string_view kategorie) : kategorie_(kategorie) {}

Logger* Logger::getInstance(std::string_view kategorie) {
    if (!hatSenke())
        return nullptr;
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    auto gefunden = zustand.logger.find(kategorie);
    if (gefunden == zustand.logger.end())
        gefunden = zustand.logger.emplace(kategorie, nullptr).first;
    if (!gefunden->second) // also after an earlier call ran out of memory here
        gefunden->second = new Logger(kategorie);
    return gefunden->second;
}

void Logger::setSink(std::shared_ptr<LogSink> senke) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.senke.swap(senke); // the former one is destroyed with the argument, after the lock
    zustand.stelleSchwelle();
}

void Logger::setLevel(LogLevel stufe) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.stufe = std::min(stufe, Error);
    zustand.stelleSchwelle();
}

void Logger::debug(std::string_view text) noexcept { schreibe(Message, Debug, text); }
void Logger::info(std::string_view text) noexcept { schreibe(Message, Info, text); }
void Logger::warn(std::string_view text) noexcept { schreibe(Message, Warn, text); }
void Logger::error(std::string_view text) noexcept { schreibe(Message, Error, text); }

void Logger::enter(std::string_view text) noexcept { schreibe(Enter, Debug, text); }
void Logger::leave(std::string_view text) noexcept { schreibe(Leave, Debug, text); }
void Logger::enterConstructor(std::string_view text) noexcept { schreibe(ConstructorEnter, Debug, text); }
void Logger::leaveConstructor(std::string_view text) noexcept { schreibe(ConstructorLeave, Debug, text); }
void Logger::enterDestructor(std::string_view text) noexcept { schreibe(DestructorEnter, Debug, text); }
void Logger::leaveDestructor(std::string_view text) noexcept { schreibe(DestructorLeave, Debug, text); }

void Logger::tagged(const char* tag, int code1, const char* text, int code2) noexcept {
    schreibeEreignis(tag ? tag : "", code1, text ? text : "", code2);
}
void Logger::tagged(const std::string& tag, int code1, const std::string& text, int code2) noexcept {
    schreibeEreignis(tag, code1, text, code2);
}

void Logger::schreibe(LogKind art, LogLevel stufe, std::string_view text) noexcept {
    if (istAn(stufe))
        uebergib(art, stufe, {}, 0, text, 0);
}

void Logger::schreibeEreignis(std::string_view tag, int code1, std::string_view text, int code2) noexcept {
    if (hatSenke())
        uebergib(Tagged, Info, tag, code1, text, code2);
}

void Logger::uebergib(LogKind art, LogLevel stufe, std::string_view tag, int code1, std::string_view text,
                      int code2) noexcept {
    try {
        Leihe leihe;
        LogEntry& eintrag = *leihe;
        eintrag.kind = art;
        eintrag.level = stufe;
        if (eintrag.category != kategorie_)
            eintrag.category = kategorie_;
        eintrag.text = text;
        if (!tag.empty() || !eintrag.tag.empty())
            eintrag.tag = tag;
        eintrag.code1 = code1;
        eintrag.code2 = code2;
        Zustand::uebergib(eintrag);
    } catch (...) { // logging changes nothing else
    }
}

} // namespace orvo::orvoutil
