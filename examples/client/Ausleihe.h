#pragma once

/// A service object on loan from its extension, given back at the end of the scope.
///
/// The extension stays the plugin's: a loan must end before the plugin is unloaded.
template <class Erweiterung>
class Ausleihe {
public:
    /// A null extension lends nothing.
    explicit Ausleihe(Erweiterung* erweiterung)
        : erweiterung_(erweiterung), service_(erweiterung ? erweiterung->holeService() : nullptr) {}
    Ausleihe(const Ausleihe&) = delete;
    Ausleihe& operator=(const Ausleihe&) = delete;
    ~Ausleihe() { gibZurueck(); }

    /// Gives the object back before the scope ends.
    void gibZurueck() {
        if (service_)
            erweiterung_->release(service_);
        service_ = nullptr;
    }

    explicit operator bool() const { return service_ != nullptr; }
    auto* get() const { return service_; }
    auto* operator->() const { return service_; }

private:
    Erweiterung* erweiterung_;
    decltype(erweiterung_->holeService()) service_;
};
