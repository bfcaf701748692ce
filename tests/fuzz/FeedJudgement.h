#pragma once

#include "fuzz/FeedWalk.h"
#include "services/ParsedProviderStatus.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// What a second reading makes of a feed; nothing where it is no feed of that kind. Texts are as in the feed: an
/// empty summary stands for the state's title.
using SecondOpinion = std::optional<ParsedProviderStatus> (*)(const FeedWalk& feed);

/// Lets the adapter read the response, requires that it says what the second opinion says, throws only what it
/// declares, and lets nothing through that is not fit to be shown.
void judgeFeed(std::string_view response, const std::string& adapterID, SecondOpinion opinion);

/// Whether the text is one of the words, which have small letters only, in any case.
bool isAnyOf(const std::string* text, std::initializer_list<std::string_view> words);

/// The status that an adapter gives where nothing else can be said.
ParsedProviderStatus nothingKnown(const std::string* pageName, const std::string* officialUpdatedAt);

} // namespace kestrin
