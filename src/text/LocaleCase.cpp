#include "text/LocaleCase.h"

#include <unicode/locid.h>
#include <unicode/stringpiece.h>
#include <unicode/unistr.h>

namespace kestrin {

std::string localeLowercase(std::string_view text, const std::optional<std::string>& localeName) {
    const icu::Locale locale = localeName ? icu::Locale(localeName->c_str()) : icu::Locale::getDefault();
    icu::UnicodeString letters = icu::UnicodeString::fromUTF8(icu::StringPiece(text));
    letters.toLower(locale);
    std::string lowercase;
    letters.toUTF8String(lowercase);
    return lowercase;
}

} // namespace kestrin
