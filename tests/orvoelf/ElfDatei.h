#pragma once

#include <link.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// The bytes of an ELF file in memory, to read and change.
class ElfDatei {
public:
    explicit ElfDatei(const std::string& pfad) {
        std::ifstream datei(pfad, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(datei), {});
    }

    std::string bytes;

    /// The value at a position; writing to it changes the file.
    template <class T>
    T& bei(std::uint64_t stelle) {
        if (stelle + sizeof(T) > bytes.size())
            throw std::out_of_range("position behind the file");
        return *reinterpret_cast<T*>(bytes.data() + stelle);
    }
    ElfW(Ehdr) & kopf() { return bei<ElfW(Ehdr)>(0); }
    ElfW(Phdr) & segment(unsigned nummer) {
        return bei<ElfW(Phdr)>(kopf().e_phoff + nummer * sizeof(ElfW(Phdr)));
    }
    /// The n-th segment of a type.
    ElfW(Phdr) & segmentVom(std::uint32_t typ, unsigned n = 0) {
        for (unsigned i = 0; i < kopf().e_phnum; ++i)
            if (segment(i).p_type == typ && n-- == 0)
                return segment(i);
        throw std::out_of_range("no such segment");
    }
    ElfW(Shdr) & abschnitt(unsigned nummer) {
        return bei<ElfW(Shdr)>(kopf().e_shoff + nummer * sizeof(ElfW(Shdr)));
    }
    ElfW(Shdr) & abschnittVom(std::uint32_t typ) {
        for (unsigned i = 0; i < kopf().e_shnum; ++i)
            if (abschnitt(i).sh_type == typ)
                return abschnitt(i);
        throw std::out_of_range("no such section");
    }
    bool hat(std::int64_t tag) { return suche(tag) != nullptr; }
    ElfW(Dyn) & eintrag(std::int64_t tag) {
        if (ElfW(Dyn)* const e = suche(tag))
            return *e;
        throw std::out_of_range("no such entry");
    }
    /// The position of an address in the file.
    std::uint64_t stelle(std::uint64_t adresse) {
        for (unsigned i = 0; i < kopf().e_phnum; ++i) {
            const ElfW(Phdr)& s = segment(i);
            if (s.p_type == PT_LOAD && adresse >= s.p_vaddr && adresse - s.p_vaddr < s.p_filesz)
                return adresse - s.p_vaddr + s.p_offset;
        }
        throw std::out_of_range("no such address");
    }
    /// The content of the table that an entry points to.
    template <class T>
    T& inTabelle(std::int64_t tag, std::uint64_t nummer = 0) {
        return bei<T>(stelle(eintrag(tag).d_un.d_ptr) + nummer * sizeof(T));
    }

    /// Moves the table of segments to the end of the file, with one more. Returns: that one.
    ElfW(Phdr) & haengeSegmentAn() {
        const std::size_t laenge = kopf().e_phnum * sizeof(ElfW(Phdr));
        bytes.resize((bytes.size() + 15) / 16 * 16);
        const std::size_t ab = bytes.size();
        bytes += bytes.substr(kopf().e_phoff, laenge) + std::string(sizeof(ElfW(Phdr)), '\0');
        kopf().e_phoff = ab;
        return segment(kopf().e_phnum++);
    }
    /// The end of the memory that is loaded.
    std::uint64_t speicherende() {
        std::uint64_t ende = 0;
        for (unsigned i = 0; i < kopf().e_phnum; ++i)
            if (segment(i).p_type == PT_LOAD)
                ende = segment(i).p_vaddr + segment(i).p_memsz;
        return ende;
    }
    /// An entry that says nothing that matters.
    ElfW(Dyn) & nebensache() { return eintrag(hat(DT_RELACOUNT) ? DT_RELACOUNT : DT_RELCOUNT); }

    void ohneAbschnitte() { kopf().e_shoff = kopf().e_shnum = kopf().e_shstrndx = 0; }

private:
    ElfW(Dyn) * suche(std::int64_t tag) {
        const ElfW(Phdr)& s = segmentVom(PT_DYNAMIC);
        for (std::uint64_t i = 0; i < s.p_filesz / sizeof(ElfW(Dyn)); ++i) {
            auto& e = bei<ElfW(Dyn)>(s.p_offset + i * sizeof(ElfW(Dyn)));
            if (e.d_tag == tag)
                return &e;
            if (e.d_tag == DT_NULL)
                break;
        }
        return nullptr;
    }
};
