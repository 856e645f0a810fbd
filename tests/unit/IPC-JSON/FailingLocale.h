#pragma once

#include <locale>
#include <stdexcept>

// Streams take their formatting from the global locale when they are made. These make it fail,
// which no record's content can.

/// Numbers and flags cannot be written.
class FailingNumbers : public std::num_put<char> {
protected:
    iter_type do_put(iter_type /*out*/, std::ios_base& /*stream*/, char /*fill*/,
                     bool /*value*/) const override {
        throw std::runtime_error("no numbers");
    }
};

/// Not even a newline can be written.
class FailingCharacters : public std::ctype<char> {
protected:
    char do_widen(char /*character*/) const override { throw std::runtime_error("no characters"); }
    const char* do_widen(const char* /*first*/, const char* /*last*/, char* /*to*/) const override {
        throw std::runtime_error("no characters");
    }
};

/// Puts the facet into the global locale for a scope.
template <class Facet>
class FailingLocale {
public:
    FailingLocale()
        : m_previous(std::locale::global(std::locale(std::locale::classic(), new Facet))) {}
    ~FailingLocale() { std::locale::global(m_previous); }
    FailingLocale(const FailingLocale&) = delete;
    FailingLocale& operator=(const FailingLocale&) = delete;

private:
    std::locale m_previous;
};
