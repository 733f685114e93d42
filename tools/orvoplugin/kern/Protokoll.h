#pragma once

#include <orvoutil/LogSink.h>
#include <orvoutil/StreamLogSink.h>

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace werkzeug {

/// Writes the library's log to the tool's standard error, as readable UTF-8. For the child process, whose own standard
/// error is captured.
class Protokoll : public orvo::orvoutil::LogSink {
public:
    /// Parameters: `stufe` as in `Optionen::log`. Returns: the log, which the library writes to from now on; null for
    /// no log.
    static std::shared_ptr<Protokoll> beginne(const std::string& stufe);

    explicit Protokoll(int deskriptor) : puffer_(deskriptor), strom_(&puffer_), senke_(strom_) {}

    void write(const orvo::orvoutil::LogEntry& eintrag) override {
        if (gewollt)
            senke_.write(eintrag);
    }

    bool gewollt = true; ///< entries are dropped while false

private:
    class Puffer : public std::streambuf {
    public:
        explicit Puffer(int deskriptor) : deskriptor_(deskriptor) {}

    protected:
        int_type overflow(int_type zeichen) override;
        std::streamsize xsputn(const char* text, std::streamsize anzahl) override;

    private:
        int deskriptor_;
    };

    Puffer puffer_;
    std::ostream strom_;
    orvo::orvoutil::StreamLogSink senke_;
};

} // namespace werkzeug
