#include "platform/XSettingsClient.h"

#include "platform/XConnection.h"

#include <QCoreApplication>

namespace kestrin {

namespace {

constexpr std::uint32_t mostWords = 1 << 16; // 256 KB; ordinary settings have one or two

} // namespace

XSettingsClient::XSettingsClient() {
    connection_ = xConnection();
    if (!connection_) return;
    selection_ = xAtom(connection_, "_XSETTINGS_S" + std::to_string(xScreenNumber()));
    managerMessage_ = xAtom(connection_, "MANAGER");
    property_ = xAtom(connection_, "_XSETTINGS_SETTINGS");
    QCoreApplication::instance()->installNativeEventFilter(this);
    findManager();
    read();
}

XSettingsClient::~XSettingsClient() {
    if (connection_ && QCoreApplication::instance()) QCoreApplication::instance()->removeNativeEventFilter(this);
}

void XSettingsClient::findManager() {
    const auto cookie = xcb_get_selection_owner(connection_, selection_);
    const auto reply = ownedReply(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
    manager_ = reply ? reply->owner : 0;
    if (!manager_) return;
    // The same events as Qt asks for: one client has one choice for each window.
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    const auto asked = xcb_change_window_attributes_checked(connection_, manager_, XCB_CW_EVENT_MASK, &events);
    // A manager may go at any moment, which is no error to report.
    xcb_discard_reply(connection_, asked.sequence);
}

void XSettingsClient::read() {
    if (!manager_) return;
    const auto cookie = xcb_get_property(connection_, false, manager_, property_, property_, 0, mostWords);
    const auto reply = ownedReply(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || reply->format != 8) return;
    const auto* bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    const int length = xcb_get_property_value_length(reply.get());
    std::optional<XSettings> found = parseXSettings({bytes, static_cast<std::size_t>(length)});
    if (!found || *found == settings_) return;
    settings_ = std::move(*found);
    if (onChange) onChange();
}

bool XSettingsClient::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    switch (event->response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY: {
        const auto* notice = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        if (notice->window == manager_ && notice->atom == property_) read();
        break;
    }
    case XCB_CLIENT_MESSAGE: {
        const auto* notice = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if (notice->type != managerMessage_ || notice->data.data32[1] != selection_) break;
        findManager();
        read();
        break;
    }
    default:
        break;
    }
    return false; // Qt reads the events too
}

} // namespace kestrin
