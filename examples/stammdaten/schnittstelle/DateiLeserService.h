#pragma once

#include <orvoplugin/service/DatensatzReaderService.h>

#include <string>
#include <vector>

namespace stammdaten {

/// The interface of this plugin's record reader, which reads files of records. Client and plugin share this header
/// only.
class DateiLeserService : public orvo::service::DatensatzReaderService {
public:
    /// Reads the records of a file, each as the text of its lines. A line of three hyphens or more parts two
    /// records; lines that begin with '#' are remarks.
    ///
    /// Parameters: `datensaetze` receives the texts, or `grund` the reason of a failure; the other one is empty.
    /// Returns: whether the file could be read.
    /// Encoding: records are Latin-1, as in the file; `grund` is Latin-1 with the path as given.
    virtual bool lies(const std::string& pfad, std::vector<std::string>& datensaetze, std::string& grund) = 0;
};

} // namespace stammdaten
