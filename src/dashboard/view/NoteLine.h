#pragma once

#include "dashboard/NoteContent.h"
#include "dashboard/view/ThemedWidget.h"

#include "appearance/view/TextStyle.h"

class QHBoxLayout;

namespace kestrin {

class SymbolLabel;
class WrappedLabel;

/// A line of text with a symbol before it. The text can be selected.
class NoteLine : public ThemedWidget {
public:
    explicit NoteLine(TextStyle style, QWidget* parent = nullptr);
    void show(const NoteContent& content);

protected:
    void applyTheme(const Theme& theme) override;

private:
    QHBoxLayout* layout_;
    SymbolLabel* symbol_;
    WrappedLabel* text_;
};

} // namespace kestrin
