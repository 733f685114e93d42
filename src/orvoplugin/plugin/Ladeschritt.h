#pragma once

// Internal: knows how far the loading of a file has come, and so why it ended when it ends now.

#include <orvoplugin/plugin/LadeBeobachter.h>

class Ladeschritt {
public:
    /// From here on, a failure means this.
    static void ist(orvo_plugin_ablehnung_t schritt) { aktueller_ = schritt; }
    static orvo_plugin_ablehnung_t aktueller() { return aktueller_; }

private:
    static inline orvo_plugin_ablehnung_t aktueller_ = ABLEHNUNG_OEFFNEN;
};
