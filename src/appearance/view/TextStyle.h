#pragma once

namespace kestrin {

/// Size and weight of a text, relative to the user's font.
enum class TextStyle {
    title3,
    figure, ///< the value of a metric
    panelTitle,
    headline,
    body,
    button,
    caption,
    captionMedium,
    captionDemiBold,
    captionBold,
    caption2,
    caption2DemiBold,
    caption2Bold
};

} // namespace kestrin
