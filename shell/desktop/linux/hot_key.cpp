#include "shell/desktop/hot_key.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QRandomGenerator>

// On Linux the desktop's global-shortcuts portal binds the key: the program
// opens a session, asks for its shortcut (the desktop may let the user pick
// another key), and hears Activated when it is pressed. Each request answers
// later with a Response signal on a path the program can predict.

namespace loadwarden {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString shortcutID = QStringLiteral("bring-forward");

struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& out, const PortalShortcut& shortcut) {
    out.beginStructure();
    out << shortcut.id << shortcut.properties;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, PortalShortcut& shortcut) {
    in.beginStructure();
    in >> shortcut.id >> shortcut.properties;
    in.endStructure();
    return in;
}

} // namespace

} // namespace loadwarden

Q_DECLARE_METATYPE(loadwarden::PortalShortcut)

namespace loadwarden {

namespace {

QString freshToken() {
    return QStringLiteral("loadwarden%1").arg(QRandomGenerator::global()->generate());
}

// Where the portal answers a request made with `token`.
QString requestPath(const QString& token) {
    QString sender = QDBusConnection::sessionBus().baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return portalPath + QStringLiteral("/request/") + sender + QLatin1Char('/') + token;
}

class PortalRegistration : public QObject, public HotKeyRegistration {
    Q_OBJECT

public:
    explicit PortalRegistration(std::function<void()> onPress) : onPress_(std::move(onPress)) {
        qDBusRegisterMetaType<PortalShortcut>();
        qDBusRegisterMetaType<QList<PortalShortcut>>();
        bus_.connect(portalService, portalPath, shortcutsInterface, QStringLiteral("Activated"),
                     this, SLOT(activated(QDBusMessage)));
        request(QStringLiteral("CreateSession"),
                {QVariantMap{{QStringLiteral("session_handle_token"), freshToken()}}},
                SLOT(sessionCreated(uint, QVariantMap)));
    }

    ~PortalRegistration() override {
        if (!session_.isEmpty()) {
            bus_.asyncCall(QDBusMessage::createMethodCall(
                portalService, session_, QStringLiteral("org.freedesktop.portal.Session"),
                QStringLiteral("Close")));
        }
    }

private slots:
    void sessionCreated(uint response, const QVariantMap& results) {
        if (response != 0) {
            return; // refused: the key stays unbound
        }
        session_ = results.value(QStringLiteral("session_handle")).toString();
        const QList<PortalShortcut> shortcuts{
            {shortcutID,
             {{QStringLiteral("description"), QStringLiteral("Bring Loadwarden forward")},
              {QStringLiteral("preferred_trigger"), QStringLiteral("CTRL+SHIFT+Escape")}}}};
        request(QStringLiteral("BindShortcuts"),
                {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(shortcuts),
                 QString(), QVariantMap()},
                nullptr);
    }

    // (session, shortcut id, timestamp, options)
    void activated(const QDBusMessage& signal) {
        const QVariantList arguments = signal.arguments();
        if (arguments.size() >= 2 && arguments.at(0).value<QDBusObjectPath>().path() == session_ &&
            arguments.at(1).toString() == shortcutID) {
            onPress_();
        }
    }

private:
    // Calls `method` with the given arguments and a fresh token in its
    // options (the last argument); `answered` gets the Response.
    void request(const QString& method, QVariantList arguments, const char* answered) {
        const QString token = freshToken();
        QVariantMap options = arguments.takeLast().toMap();
        options.insert(QStringLiteral("handle_token"), token);
        arguments << options;
        if (answered) {
            bus_.connect(portalService, requestPath(token), requestInterface,
                         QStringLiteral("Response"), this, answered);
        }
        QDBusMessage call =
            QDBusMessage::createMethodCall(portalService, portalPath, shortcutsInterface, method);
        call.setArguments(arguments);
        bus_.asyncCall(call);
    }

    QDBusConnection bus_ = QDBusConnection::sessionBus();
    std::function<void()> onPress_;
    QString session_;
};

} // namespace

// The portal says it has the interface by giving its version; asked once,
// since the answer is waited for.
bool hotKeyAvailable() {
    static const bool available = [] {
        QDBusMessage get = QDBusMessage::createMethodCall(
            portalService, portalPath, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"));
        get << shortcutsInterface << QStringLiteral("version");
        return QDBusConnection::sessionBus().call(get, QDBus::Block, 1000).type() ==
               QDBusMessage::ReplyMessage;
    }();
    return available;
}

std::unique_ptr<HotKeyRegistration> registerHotKey(std::function<void()> onPress) {
    return std::make_unique<PortalRegistration>(std::move(onPress));
}

} // namespace loadwarden

#include "hot_key.moc"
