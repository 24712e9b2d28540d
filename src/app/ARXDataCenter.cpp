#include "app/ARXDataCenter.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXConsole.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXMountTable.h"
#include "platform/ARXNotificationCenter.h"

#include <QCollator>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>
#include <cerrno>

namespace {

std::function<ARXVolumeList()>& volumeReader() {
    static std::function<ARXVolumeList()> reader;
    return reader;
}

ARXVolumeList readSortedVolumes() {
    ARXVolumeList volumes =
        volumeReader() ? volumeReader()() : ARXMountTable::shared().readVolumes();
    // Longest root first, so that the first volume whose root is a prefix of a path is the most
    // specific one. Stable: volumes mounted over each other keep the table's order.
    std::stable_sort(volumes.begin(), volumes.end(),
                     [](const ARXVolumeRef& a, const ARXVolumeRef& b) {
                         return ARXPath::display(a->root).size() > ARXPath::display(b->root).size();
                     });
    return volumes;
}

Path joinUnlessEndsWith(const Path& root, const std::string& sub) {
    const std::string tail = "/" + sub;
    if (root.size() >= tail.size() &&
        root.compare(root.size() - tail.size(), tail.size(), tail) == 0) {
        return root;
    }
    return ARXPath::join(root, sub);
}

void createFolder(const Path& path, const char* what) {
    if (int error = ARXFileIO::makeDirectories(path)) {
        ARXConsole::line(QStringLiteral("Atrium: cannot create the %1 folder %2: %3")
                             .arg(QLatin1String(what), ARXPath::display(path),
                                  QString::fromStdString(ARXFileIO::errorText(error))));
    }
}

// The characters a URL host may hold unescaped besides letters, digits and "-._~". "/" is not
// among them, so any name becomes a single file name.
const QByteArray kHostAllowed = QByteArrayLiteral("!$&'()*+,;=:[]");
const std::string kExtension = ".atx";

} // namespace

ARXDataCenter& ARXDataCenter::shared() {
    static ARXDataCenter* center = new ARXDataCenter(ARXConf::dataRoot());
    return *center;
}

ARXDataCenter::ARXDataCenter(const Path& dataRoot)
    : spacePath(joinUnlessEndsWith(dataRoot, "guest/spaces")),
      newfileTemplatePath(joinUnlessEndsWith(dataRoot, "newfile.templates")) {
    // A folder that cannot be made is reported and otherwise ignored: Atrium still runs, and
    // each later save says why it failed.
    createFolder(spacePath, "workspaces");
    createFolder(newfileTemplatePath, "templates");
    if (!volumeReader()) {
        connect(&ARXMountTable::shared(), &ARXMountTable::mountsChanged, this,
                &ARXDataCenter::notifyVolumesChanged);
    }
    setVolumes(readSortedVolumes());
}

void ARXDataCenter::setVolumes(ARXVolumeList volumes) {
    auto list = std::make_shared<const ARXVolumeList>(std::move(volumes));
    std::lock_guard lock(_volumesMutex);
    _volumes = std::move(list);
}

void ARXDataCenter::setVolumeReaderForTesting(std::function<ARXVolumeList()> reader) {
    volumeReader() = std::move(reader);
}

void ARXDataCenter::reloadVolumes() {
    setVolumes(readSortedVolumes());
}

void ARXDataCenter::notifyVolumesChanged() {
    reloadVolumes();
    ARXNotificationCenter::shared().post(ARXNotificationName::rv_mounted_volumes_changed);
}

ARXVolumeRef ARXDataCenter::volumeFor(const Path& path) const {
    std::shared_ptr<const ARXVolumeList> volumes;
    {
        std::lock_guard lock(_volumesMutex);
        volumes = _volumes;
    }
    const Path probe = path.ends_with('/') ? path : path + "/";
    for (const ARXVolumeRef& volume : *volumes) {
        const Path root = volume->root.ends_with('/') ? volume->root : volume->root + "/";
        if (probe.starts_with(root)) {
            return volume;
        }
    }
    return nullptr;
}

bool ARXDataCenter::onSameVolume(const std::vector<Path>& paths) const {
    if (paths.size() < 2) {
        return true;
    }
    const ARXVolumeRef first = volumeFor(paths.front());
    return std::all_of(paths.begin() + 1, paths.end(),
                       [&](const Path& p) { return volumeFor(p) == first; });
}

QString ARXDataCenter::encodeName(const QString& name) {
    return QString::fromLatin1(name.toUtf8().toPercentEncoding(kHostAllowed));
}

std::optional<QString> ARXDataCenter::decodeFileName(const std::string& fileName) {
    const QByteArray decoded =
        QByteArray::fromPercentEncoding(QByteArray(fileName.data(), qsizetype(fileName.size())));
    if (decoded.isEmpty() ||
        !ARXPath::isValidUtf8(std::string_view(decoded.constData(), size_t(decoded.size())))) {
        return std::nullopt;
    }
    return QString::fromUtf8(decoded);
}

Path ARXDataCenter::path(const QString& name) const {
    QString encoded = encodeName(name);
    if (encoded.isEmpty()) {
        encoded = encodeName(ARXConf::defaultWorkspaceName());
    }
    return ARXPath::join(spacePath, ARXPath::fromText(encoded) + kExtension);
}

QStringList ARXDataCenter::workspaceNames() const {
    int error = 0;
    const auto files = ARXFileIO::listNames(spacePath, &error);
    if (!files) {
        ARXConsole::line(QStringLiteral("Atrium: cannot list the workspaces in %1: %2")
                             .arg(ARXPath::display(spacePath),
                                  QString::fromStdString(ARXFileIO::errorText(error))));
        return {};
    }
    QStringList names;
    std::set<QString> seen;
    for (const std::string& file : *files) {
        if (!file.ends_with(kExtension)) {
            continue;
        }
        // A name that does not decode (bad escapes, bytes that are not UTF-8) reads as the default
        // name, as its own file name would be written.
        QString decoded = decodeFileName(file).value_or(ARXConf::defaultWorkspaceName());
        const auto dot = decoded.lastIndexOf(u'.');
        QString name = dot >= 0 ? decoded.left(dot) : decoded;
        if (name.isEmpty()) {
            name = ARXConf::defaultWorkspaceName(); // ".atx": the file an empty name gets
        }
        if (seen.insert(name).second) {
            names.append(name);
        }
    }
    // The "C" locale of a bare session has no collation rules (and no numeric mode), so it sorts
    // like English there.
    QLocale locale;
    if (locale.language() == QLocale::C) {
        locale = QLocale(QLocale::English, QLocale::UnitedStates);
    }
    QCollator collator(locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(names.begin(), names.end(), [&](const QString& a, const QString& b) {
        return collator.compare(a, b) < 0;
    });
    return names;
}

bool ARXDataCenter::save(const QString& name, const ARXAtriumData& data) const {
    const QByteArray json = QJsonDocument(data.toJson()).toJson(QJsonDocument::Indented);
    const Path file = path(name);
    if (_unusable.contains(file) && ARXFileIO::exists(file)) {
        const Path aside = ARXFileIO::setAside(file);
        if (aside.empty()) {
            ARXConsole::line(QStringLiteral("Atrium: workspace \"%1\" not saved: cannot move the "
                                            "unusable %2 aside")
                                 .arg(name, ARXPath::display(file)));
            return false;
        }
        ARXConsole::line(QStringLiteral("Atrium: the unusable workspace file %1 was kept as %2")
                             .arg(ARXPath::display(file), ARXPath::display(aside)));
    }
    _unusable.erase(file);
    if (int error = ARXFileIO::writeAtomically(
            file, std::string_view(json.constData(), size_t(json.size())))) {
        ARXConsole::line(QStringLiteral("Atrium: cannot save workspace \"%1\" to %2: %3")
                             .arg(name, ARXPath::display(file),
                                  QString::fromStdString(ARXFileIO::errorText(error))));
        return false;
    }
    return true;
}

std::optional<ARXAtriumData> ARXDataCenter::load(const Path& file) const {
    int error = 0;
    const auto bytes = ARXFileIO::readFile(file, 16u << 20, &error);
    QString why;
    std::optional<ARXAtriumData> data;
    if (!bytes) {
        why = QString::fromStdString(ARXFileIO::errorText(error));
    } else {
        data = ARXAtriumData::fromJsonBytes(
            QByteArray::fromRawData(bytes->data(), qsizetype(bytes->size())), &why);
    }
    // A missing file, or an empty one, holds nothing worth keeping.
    const bool nothing = bytes && bytes->find_first_not_of(" \t\r\n") == std::string::npos;
    if (data || error == ENOENT || nothing) {
        if (!data) {
            ARXConsole::line(QStringLiteral("Atrium: cannot read workspace file %1: %2")
                                 .arg(ARXPath::display(file), why));
        }
        return data;
    }
    // What the user may still want is never written over: the next save moves it aside.
    _unusable.insert(file);
    ARXConsole::line(QStringLiteral("Atrium: workspace file %1 cannot be used (%2); the "
                                    "workspace opens with defaults, and the file is kept as "
                                    "%3 when the workspace is next saved")
                         .arg(ARXPath::display(file), why,
                              ARXPath::display(ARXPath::lastComponent(file) + ".broken")));
    return data;
}

ARXAtriumData ARXDataCenter::emptyWorkspace() {
    ARXAtriumData data;
    data.sidebarWidth = ARXConf::sidebarDefaultWidth;
    data.layoutId = ARXConf::settings_default_layout().value();
    return data;
}

QString ARXDataCenter::createWorkspace() const {
    const QStringList existing = workspaceNames();
    QString name;
    for (int n = 1;; ++n) {
        name = ARXConf::numberedWorkspaceName(n);
        if (!existing.contains(name)) {
            break;
        }
    }
    save(name, emptyWorkspace());
    return name;
}
