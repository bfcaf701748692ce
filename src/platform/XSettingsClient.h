#pragma once

#include "platform/XSettings.h"

#include <QAbstractNativeEventFilter>
#include <functional>

struct xcb_connection_t;

namespace kestrin {

/// Follows the settings that a desktop announces to the clients of its X server, over Qt's own connection.
/// Elsewhere, and where nobody announces any, there are none. After the manager of the settings has gone its last
/// ones count until the next manager comes. Main thread, while there is an application object.
class XSettingsClient final : public QAbstractNativeEventFilter {
public:
    XSettingsClient();
    ~XSettingsClient() override;
    XSettingsClient(const XSettingsClient&) = delete;
    XSettingsClient& operator=(const XSettingsClient&) = delete;

    [[nodiscard]] const XSettings& settings() const { return settings_; }
    std::function<void()> onChange;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    void findManager();
    void read();

    xcb_connection_t* connection_ = nullptr; ///< Qt's; null without an X server
    std::uint32_t selection_ = 0;
    std::uint32_t managerMessage_ = 0;
    std::uint32_t property_ = 0;
    std::uint32_t manager_ = 0; ///< its window, or 0
    XSettings settings_;
};

} // namespace kestrin
