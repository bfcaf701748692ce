#include "destinations/URLReference.h"

#include "destinations/URLCharacters.h"
#include "destinations/URLSplitter.h"

#include <string>
#include <vector>

namespace kestrin {
namespace {

constexpr auto npos = std::string_view::npos;

/// A reference cut at its marks: scheme, authority and path together, and what follows them.
struct Reference {
    std::string_view hierarchy;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

Reference partsOf(std::string_view location) {
    Reference reference;
    if (const auto hash = location.find('#'); hash != npos) {
        reference.fragment = location.substr(hash + 1);
        location = location.substr(0, hash);
    }
    if (const auto question = location.find('?'); question != npos) {
        reference.query = location.substr(question + 1);
        location = location.substr(0, question);
    }
    reference.hierarchy = location;
    return reference;
}

/// For a path that begins with "/", as every path behind an authority does.
std::string withoutDotSegments(std::string_view path) {
    if (path.empty()) return {};
    std::vector<std::string_view> kept;
    bool endsInFolder = false;
    for (auto rest = path.substr(1);;) {
        const auto slash = rest.find('/');
        const auto segment = rest.substr(0, slash);
        endsInFolder = segment == "." || segment == "..";
        if (!endsInFolder) kept.push_back(segment);
        if (segment == ".." && !kept.empty()) kept.pop_back();
        if (slash == npos) break;
        rest = rest.substr(slash + 1);
    }
    std::string result;
    for (const auto segment : kept)
        result.append("/").append(segment);
    if (endsInFolder) result += '/';
    return result;
}

std::string mergedPath(const WebURL& base, std::string_view path) {
    const auto slash = base.path.rfind('/');
    std::string merged = slash == std::string::npos ? "/" : base.path.substr(0, slash + 1);
    return merged.append(path);
}

/// `prefix` is the scheme with its colon, `hierarchy` begins with "//": the location brings an authority of its
/// own.
std::optional<WebURL> withOwnAuthority(const std::string& prefix, const Reference& reference) {
    const auto slash = reference.hierarchy.find('/', 2);
    std::string text = prefix + std::string(reference.hierarchy.substr(0, slash));
    if (slash != npos) text += withoutDotSegments(reference.hierarchy.substr(slash));
    if (reference.query) text.append("?").append(*reference.query);
    if (reference.fragment) text.append("#").append(*reference.fragment);
    return splitURL(text);
}

} // namespace

std::optional<WebURL> resolveReference(const WebURL& base, std::string_view location) {
    // Looked at before the removal of dot segments could hide what they contain.
    if (!hasOnlyURLCharacters(location)) return std::nullopt;
    Reference reference = partsOf(location);

    const auto firstSegment = reference.hierarchy.substr(0, reference.hierarchy.find('/'));
    if (const auto colon = firstSegment.find(':'); colon != npos) {
        // A colon this early ends a scheme. A reference like "https:page" has no authority and leads nowhere, and
        // what precedes the colon is judged with the rest of the composed text.
        const std::string prefix(reference.hierarchy.substr(0, colon + 1));
        reference.hierarchy.remove_prefix(colon + 1);
        if (!reference.hierarchy.starts_with("//")) return std::nullopt;
        return withOwnAuthority(prefix, reference);
    }
    if (reference.hierarchy.starts_with("//")) return withOwnAuthority(base.scheme + ":", reference);

    WebURL target = base;
    if (reference.hierarchy.starts_with('/')) {
        target.path = withoutDotSegments(reference.hierarchy);
    } else if (!reference.hierarchy.empty()) {
        target.path = withoutDotSegments(mergedPath(base, reference.hierarchy));
    }
    if (!reference.hierarchy.empty() || reference.query) target.query = reference.query;
    target.fragment = reference.fragment;
    return splitURL(joinURL(target));
}

} // namespace kestrin
