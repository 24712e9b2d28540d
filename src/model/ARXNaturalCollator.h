#pragma once

#include <QString>

#include <string>

// The order people expect of file names: letters by the rules of the user's language, letter
// case only as a last tie-break ("apple" < "Banana" < "cherry"), and runs of digits by their value
// ("file9" < "file10"). Backed by one ICU collator for the process, made for the system locale
// at first use; safe on any thread.
//
// Large sorts compare sort keys, not texts: a key is computed once per name and plain byte order
// of keys is the order of the names, so sorting n names costs n key computations and cheap byte
// comparisons instead of n log n collations.
namespace ARXNaturalCollator {

// The key of a text: compare keys with std::string's operators (byte order).
std::string sortKey(const QString& text);

// Negative, zero or positive as a sorts before, with or after b.
int compare(const QString& a, const QString& b);

} // namespace ARXNaturalCollator
