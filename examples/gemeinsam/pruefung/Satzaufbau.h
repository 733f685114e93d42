#pragma once

#include <cstdint>
#include <span>

namespace pruefung {

/// What may stand in a field.
enum class Feldart : std::uint8_t { TEXT, IDNR, BETRAG, DATUM, FINANZAMT };

struct Feldregel {
    const char* name;
    Feldart art;
    bool pflicht; ///< whether a record without the field is at fault
};

/// An amount that may be at most a share of another one, in thousandths.
struct Anteilsregel {
    const char* betrag;
    const char* grundlage;
    std::int32_t promille;
};

/// How a kind of record ("Satzart") is built, and how its amounts go together. Every kind has the fields of
/// `kopffelder` besides its own.
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

/// Who, since when, until when: in every record.
std::span<const Feldregel> kopffelder();

/// The own fields of a wage-tax certificate.
std::span<const Feldregel> lohnsteuerFelder();

} // namespace pruefung
