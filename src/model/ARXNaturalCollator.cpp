#include "model/ARXNaturalCollator.h"

#include "platform/ARXConsole.h"

#include <QLocale>

#include <unicode/ucol.h>

#include <array>

namespace ARXNaturalCollator {

namespace {

// A collator that cannot be opened (no ICU data for the locale and none for the root either)
// leaves the order to plain code-point comparison, with a line on the console.
UCollator* openCollator() {
    const QByteArray locale = QLocale::system().name().toLatin1();
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale.constData(), &status);
    if (U_FAILURE(status)) {
        status = U_ZERO_ERROR;
        collator = ucol_open("", &status);
    }
    if (U_FAILURE(status) || !collator) {
        ARXConsole::line(
            QStringLiteral("Atrium: no collator for the locale %1 (%2); names sort "
                           "by code point")
                .arg(QString::fromLatin1(locale), QString::fromLatin1(u_errorName(status))));
        return nullptr;
    }
    // Tertiary strength: case and width never outweigh a difference of letters or accents, they
    // only order names that are otherwise the same, so that the order never depends on the order
    // the items were read in.
    ucol_setStrength(collator, UCOL_TERTIARY);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    return collator;
}

const UCollator* collator() {
    // Never closed: it lives as long as the process, and keys made with it stay comparable.
    static UCollator* const shared = openCollator();
    return shared;
}

const UChar* chars(const QString& text) {
    return reinterpret_cast<const UChar*>(text.utf16());
}

} // namespace

std::string sortKey(const QString& text) {
    const UCollator* coll = collator();
    if (!coll) {
        // Code-point order of UTF-16 big-endian bytes.
        std::string key;
        key.reserve(size_t(text.size()) * 2);
        for (QChar c : text) {
            key.push_back(char(c.unicode() >> 8));
            key.push_back(char(c.unicode() & 0xff));
        }
        return key;
    }
    std::array<uint8_t, 256> stackBuffer;
    int32_t length = ucol_getSortKey(coll, chars(text), int32_t(text.size()), stackBuffer.data(),
                                     int32_t(stackBuffer.size()));
    // The length counts the final NUL, which the key does not need: std::string compares lengths.
    if (length <= int32_t(stackBuffer.size())) {
        return std::string(reinterpret_cast<const char*>(stackBuffer.data()),
                           size_t(length > 0 ? length - 1 : 0));
    }
    std::string key(size_t(length), '\0');
    length = ucol_getSortKey(coll, chars(text), int32_t(text.size()),
                             reinterpret_cast<uint8_t*>(key.data()), length);
    key.resize(size_t(length > 0 ? length - 1 : 0));
    return key;
}

int compare(const QString& a, const QString& b) {
    const UCollator* coll = collator();
    if (!coll) {
        return a.compare(b);
    }
    return int(ucol_strcoll(coll, chars(a), int32_t(a.size()), chars(b), int32_t(b.size())));
}

} // namespace ARXNaturalCollator
