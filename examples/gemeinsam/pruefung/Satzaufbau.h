#pragma once

#include <cstdint>
#include <span>

namespace pruefung {

/// The content of a field.
enum class Feldart : std::uint8_t { TEXT, IDNR, BETRAG, DATUM, FINANZAMT };

struct Feldregel {
    const char* name;
    Feldart art;
    bool pflicht; ///< whether the field is required
};

/// An amount that may be at most a share of another one, in thousandths.
struct Anteilsregel {
    const char* betrag;
    const char* grundlage;
    std::int32_t promille;
};

/// The structure of a kind of record ("Satzart"), and the rules between its amounts. Every kind also has the fields of
/// `kopffelder`.
///
/// Ownership: views of tables that live as long as the plugin's library is open.
struct Satzaufbau {
    const char* satzart;
    std::span<const Feldregel> felder;
    std::span<const Anteilsregel> anteile;
};

constexpr char kSatzart[] = "Satzart";
constexpr char kIdNr[] = "IdNr";
constexpr char kBeginn[] = "Beginn";
constexpr char kEnde[] = "Ende";

/// Person, beginning and end: in every record.
std::span<const Feldregel> kopffelder();

/// The own fields of a wage-tax certificate.
std::span<const Feldregel> lohnsteuerFelder();

} // namespace pruefung
