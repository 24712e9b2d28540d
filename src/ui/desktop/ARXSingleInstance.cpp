#include "ui/desktop/ARXSingleInstance.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileStatus.h"
#include "ui/ARXFileClipboard.h"
#include "ui/desktop/ARXApplicationAdaptor.h"
#include "ui/desktop/ARXInstanceHandler.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QEventLoop>
#include <QTimer>
#include <QVariant>

#include <cctype>
#include <cstring>

const QString ARXSingleInstance::serviceName = QStringLiteral("com.brightmoor.atrium");
const QString ARXSingleInstance::objectPath = QStringLiteral("/com/brightmoor/atrium");
const QString ARXSingleInstance::interfaceName = QStringLiteral("com.brightmoor.atrium.Instance");

namespace {

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) {
        return false;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) != prefix[i]) {
            return false;
        }
    }
    return true;
}

// "sftp://host/x", "https://...": a scheme (RFC 3986) followed by "://". A relative path such as
// "notes:old" has no "//" after its colon and stays a path.
bool isUriOfOtherScheme(std::string_view text) {
    const size_t colon = text.find("://");
    if (colon == std::string_view::npos || colon == 0 ||
        !std::isalpha(static_cast<unsigned char>(text[0]))) {
        return false;
    }
    for (size_t i = 1; i < colon; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (!std::isalnum(c) && c != '+' && c != '-' && c != '.') {
            return false;
        }
    }
    return true;
}

// Joins the components of an absolute path, leaving out empty and "." ones.
Path withoutDotComponents(std::string_view path) {
    Path result;
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string_view::npos) {
            end = path.size();
        }
        const std::string_view component = path.substr(start, end - start);
        if (!component.empty() && component != ".") {
            result += '/';
            result += component;
        }
        start = end + 1;
    }
    return result.empty() ? Path("/") : result;
}

void reportMissing(const Path& path, int error) {
    ARXConsole::line(
        QStringLiteral("Atrium: %1: %2")
            .arg(ARXPath::display(path), QString::fromLocal8Bit(std::strerror(error))));
}

} // namespace

ARXSingleInstance::ARXSingleInstance(const QDBusConnection& connection, QObject* parent)
    : QObject(parent), _connection(connection) {
    qDBusRegisterMetaType<QList<QByteArray>>();
    new ARXApplicationAdaptor(this);
}

ARXSingleInstance::~ARXSingleInstance() {
    if (_objectRegistered) {
        _connection.unregisterObject(objectPath);
    }
    if (_role == Role::first && _connection.isConnected()) {
        _connection.interface()->unregisterService(serviceName);
    }
}

ARXSingleInstance::Role ARXSingleInstance::start(const std::vector<Path>& paths,
                                                 const QByteArray& token) {
    if (!_connection.isConnected()) {
        const QString reason = _connection.lastError().message();
        ARXConsole::line(QStringLiteral("Atrium: no session bus (%1); running on its own")
                             .arg(reason.isEmpty() ? QStringLiteral("not connected") : reason));
        return _role = Role::standalone;
    }
    QString lastError;
    for (int attempt = 0; attempt < std::max(1, _timing.attempts); ++attempt) {
        if (attempt > 0) {
            // An owner that has not exported its object yet is still starting; give it a moment.
            QEventLoop loop;
            QTimer::singleShot(_timing.retryDelayMs, &loop, &QEventLoop::quit);
            loop.exec(QEventLoop::ExcludeUserInputEvents);
        }
        // Tried again on every attempt: when the owner has just quit, this process takes over.
        if (claimName()) {
            return _role = Role::first;
        }
        lastError = handOver(paths, token);
        if (lastError.isEmpty()) {
            break;
        }
    }
    if (_objectRegistered) {
        _connection.unregisterObject(objectPath);
        _objectRegistered = false;
    }
    if (lastError.isEmpty()) {
        return _role = Role::handedOver;
    }
    ARXConsole::line(
        QStringLiteral("Atrium: the running Atrium does not answer (%1); starting another one")
            .arg(lastError));
    return _role = Role::standalone;
}

bool ARXSingleInstance::claimName() {
    // The object goes up before the name, so that whoever sees the name can reach the object.
    if (!_objectRegistered) {
        _objectRegistered = _connection.registerObject(objectPath, this,
                                                       QDBusConnection::ExportScriptableSlots |
                                                           QDBusConnection::ExportAdaptors);
    }
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        _connection.interface()->registerService(serviceName,
                                                 QDBusConnectionInterface::DontQueueService,
                                                 QDBusConnectionInterface::DontAllowReplacement);
    return reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

QString ARXSingleInstance::handOver(const std::vector<Path>& paths, const QByteArray& token) {
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName,
                                                       paths.empty() ? QStringLiteral("Activate")
                                                                     : QStringLiteral("Open"));
    if (!paths.empty()) {
        QList<QByteArray> bytes;
        for (const Path& path : paths) {
            bytes.append(QByteArray::fromStdString(path));
        }
        call << QVariant::fromValue(bytes);
    }
    call << QString::fromUtf8(token);
    // The event loop keeps running meanwhile: the wait is bounded, and a caller in the same
    // process as the owner (as in tests) does not block the owner's answer.
    const QDBusMessage reply = _connection.call(call, QDBus::BlockWithGui, _timing.callTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return {};
    }
    if (reply.errorName().isEmpty()) {
        return QStringLiteral("no answer");
    }
    return reply.errorMessage().isEmpty()
               ? reply.errorName()
               : QStringLiteral("%1: %2").arg(reply.errorName(), reply.errorMessage());
}

void ARXSingleInstance::setHandler(ARXInstanceHandler* handler) {
    _handler = handler;
    if (_handler && !_pending.empty()) {
        QTimer::singleShot(0, this, [this] { post({}); });
    }
}

void ARXSingleInstance::post(std::function<void(ARXInstanceHandler&)> request) {
    if (request) {
        _pending.push_back(std::move(request));
    }
    if (!_handler || _pending.empty()) {
        return;
    }
    // Handled from the event loop, after the caller has its answer: opening windows may take a
    // while, and a second start should not wait for it.
    QTimer::singleShot(0, this, [this] {
        std::vector<std::function<void(ARXInstanceHandler&)>> requests;
        requests.swap(_pending);
        for (const auto& run : requests) {
            if (_handler) {
                run(*_handler);
            }
        }
    });
}

void ARXSingleInstance::refuseCall(const QString& text) {
    // The bus sets the call's context on the object it reached, also for its adaptors' calls.
    if (calledFromDBus()) {
        sendErrorReply(QDBusError::InvalidArgs, text);
    }
}

bool ARXSingleInstance::isRepeatedRequest(const QByteArray& key) {
    // A second start whose call timed out sends the same call again, and both copies reach the
    // owner once it answers; the copy from the same sender is dropped.
    const QString sender = calledFromDBus() ? message().service() : QString();
    if (!sender.isEmpty() && sender == _lastSender && key == _lastRequest) {
        return true;
    }
    _lastSender = sender;
    _lastRequest = key;
    return false;
}

void ARXSingleInstance::Open(const QList<QByteArray>& paths, const QString& token) {
    std::vector<Path> absolute;
    QByteArray key("Open");
    for (const QByteArray& bytes : paths) {
        Path path = bytes.toStdString();
        key += '\0' + bytes;
        // The sender made its paths absolute; anything else has no folder to be taken against.
        if (path.empty() || path.front() != '/' || path.find('\0') != Path::npos) {
            ARXConsole::line(QStringLiteral("Atrium: \"%1\" is not an absolute path; left out")
                                 .arg(ARXPath::display(path)));
            continue;
        }
        absolute.push_back(withoutDotComponents(path));
    }
    if (isRepeatedRequest(key)) {
        return;
    }
    post([absolute, bytes = token.toUtf8()](ARXInstanceHandler& handler) {
        deliver(handler, absolute, bytes);
    });
}

void ARXSingleInstance::Activate(const QString& token) {
    if (isRepeatedRequest(QByteArrayLiteral("Activate"))) {
        return;
    }
    post([bytes = token.toUtf8()](ARXInstanceHandler& handler) { handler.reopen(bytes); });
}

void ARXSingleInstance::deliver(ARXInstanceHandler& handler, const std::vector<Path>& paths,
                                const QByteArray& token) {
    std::vector<Path> folders;
    std::vector<Path> items;
    for (const Path& path : paths) {
        // A link to a folder opens the folder; a dangling link is still an item to show.
        const ARXFileStatus status = ARXFileStatus::stat(path);
        if (status.exists && status.isDirectory()) {
            folders.push_back(path);
        } else if (status.exists || ARXFileStatus::lstat(path).exists) {
            items.push_back(path);
        } else {
            reportMissing(path, status.error);
        }
    }
    if (!folders.empty()) {
        handler.openFolders(folders, token);
    }
    if (!items.empty()) {
        handler.revealItems(items, token);
    }
    if (folders.empty() && items.empty()) {
        // Asked to show something that is gone: the nearest answer is the window itself.
        handler.reopen(token);
    }
}

Path ARXSingleInstance::absolutePath(std::string_view argument, const Path& workingDirectory) {
    if (argument.empty()) {
        return {};
    }
    if (startsWithNoCase(argument, "file:/")) {
        QByteArray uri = QByteArrayLiteral("file:") +
                         QByteArray(argument.data() + 5, qsizetype(argument.size() - 5));
        // "file:/a" is the short form of "file:///a" that some programs write.
        if (!uri.startsWith("file://")) {
            uri.insert(5, "//");
        }
        const Path path = ARXFileClipboard::localPath(uri);
        return path.empty() ? Path() : withoutDotComponents(path);
    }
    if (isUriOfOtherScheme(argument)) {
        return {};
    }
    if (argument.front() == '/') {
        return withoutDotComponents(argument);
    }
    return withoutDotComponents(ARXPath::join(workingDirectory, argument));
}

std::vector<Path> ARXSingleInstance::commandLinePaths(const std::vector<std::string>& arguments,
                                                      const Path& workingDirectory) {
    std::vector<Path> paths;
    for (const std::string& argument : arguments) {
        const Path path = absolutePath(argument, workingDirectory);
        if (path.empty()) {
            ARXConsole::line(QStringLiteral("Atrium: %1: not a local file; left out")
                                 .arg(ARXPath::display(argument)));
            continue;
        }
        const ARXFileStatus status = ARXFileStatus::lstat(path);
        if (!status.exists) {
            reportMissing(path, status.error);
            continue;
        }
        paths.push_back(path);
    }
    return paths;
}
