// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "document/Fail.h"
#include "document/OpenGroups.h"
#include "document/TreeWalk.h"
#include "schema/DeletePolicy.h"
#include "session/DurableFile.h"
#include "session/PixInsightEnv.h"
#include "session/VerifiedFile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

#include <algorithm>
#include <functional>
#include <future>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Gives `text`, if it isn't empty, to `remark`, unless that is null.
void say(QString* remark, const QString& text)
{
    if (remark && !text.isEmpty()) {
        *remark = text;
    }
}

bool failChanged(QString* error)
{
    return fail(error, u"The file changed on disk since it was loaded (PixInsight may have "
                       "written it). Reload it and redo your edits."_s);
}

/// Makes `bytes` the content of `store`: the last step of whatever opens a file. On failure nothing
/// is loaded any more.
bool adopt(SettingsStore& store, const QString& path, const QByteArray& bytes, QString* error)
{
    // In a second thread, or at `get` if there is none to be had. It is the shorter half, since a
    // thread may start some milliseconds late.
    std::future<bool> isParsed =
        std::async([&] { return parseSettings(store.document, bytes, path, error); });
    const QByteArray hash = sha256(bytes);
    store.loaded = isParsed.get();
    if (store.loaded) {
        store.path = path;
        store.loadedHash = hash;
    }
    return store.loaded;
}

/// One replacement of the open file, with a backup of what it held.
struct Replacement
{
    enum class Outcome { NoBackup, Failed, Done };

    const SettingsStore& store;
    const QByteArray& bytes;
    bool isNew = false;    ///< The file is missing.
    QByteArray formerHash; ///< SHA-256 that the file must have; empty: any, and gets it.
    QString suffix;        ///< Of the backup's name.
    QString model;         ///< Whose mode and owner the file gets if it is missing.
    std::function<bool(QString*)> mayReplace; ///< The last look before the step.

    QString backup; ///< The one made; without one, the name that it should have had.
    QString remark;

    /// All that can fail comes first, so that no backup is left by a disk that is full.
    Outcome run(QString* error)
    {
        QTemporaryFile copy;
        QSaveFile file;
        QString reason;
        backup = store.backupName(suffix);
        const bool isCopied =
            isNew || copyVerified(store.path, formerHash, newestBackupTime(), copy, &reason);
        if (isCopied) {
            if (!prepareReplacement(file, store.path, bytes, model, error)) {
                remark = !isNew && isUntouched() ? u"The file is unchanged."_s : QString();
                return Outcome::Failed;
            }
            backup = store.backupName(suffix); // the first name may be taken by now
        }
        if (!isCopied || (!isNew && !nameCopy(copy, backup, &reason))) {
            const bool isNamed = !copy.autoRemove() || hasHash(backup, formerHash);
            remark = isNamed ? u"The disk did not confirm the backup %1: %2"_s.arg(
                                   QFileInfo(backup).fileName(), reason)
                             : u"Reason: %1"_s.arg(reason);
            return Outcome::NoBackup;
        }
        if (!mayReplace(error)) {
            remark = isNew ? QString() : madeText();
            return Outcome::Failed;
        }
        QString doubt;
        if (!commitVerified(file, store.path, bytes, model, doubt, error)) {
            remark = wayBack();
            return Outcome::Failed;
        }
        if (!doubt.isEmpty()) {
            remark = u"Saved, but the disk did not confirm it (%1). Check the disk, and keep the "
                     "backup %2."_s.arg(doubt, QFileInfo(isNew ? model : backup).fileName());
        }
        return Outcome::Done;
    }

    /// Whether the file is unchanged.
    bool isUntouched() const
    {
        return isNew ? isMissing(store.path) : hasHash(store.path, formerHash);
    }

    /// The remark if the replacement, or a later step, failed.
    QString wayBack() const
    {
        if (isNew) {
            return {};
        }
        return isUntouched()
                   ? u"The file is unchanged. "_s + madeText()
                   : u"The file had been replaced by then. Its former content is in the "
                     "backup %1, which can be restored."_s.arg(QFileInfo(backup).fileName());
    }

private:
    QString madeText() const
    {
        return u"The backup %1 had been made by then."_s.arg(QFileInfo(backup).fileName());
    }

    QDateTime newestBackupTime() const
    {
        const QStringList backups = PixInsightEnv::backupsOf(store.path);
        return backups.isEmpty() ? QDateTime() : QFileInfo(backups.constFirst()).lastModified();
    }
};

/// Asks the policy once more about each queued deletion.
bool mayDeleteAll(const SettingsStore& store, QString* error)
{
    const QList<XsdtNode*> deletions = store.document.deletions();
    for (const XsdtNode* node : deletions) {
        const DeleteDecision decision =
            store.policy ? store.policy->decide(node) : DeleteDecision();
        if (decision.level == DeleteLevel::Never) {
            return fail(error,
                        u"'%1' is protected and cannot be deleted. %2 Nothing was written."_s.arg(
                            node->path(), decision.reason));
        }
    }
    return true;
}

/// The serialised document; empty if it doesn't read back as the same tree.
QByteArray serializeChecked(const XsdtDocument& document, QString* error)
{
    QByteArray bytes = document.serialize();
    XsdtDocument parsed;
    QString detail;
    if (!parsed.parse(bytes, &detail)) {
        (void)fail(error, u"Internal error: the edited document does not parse back (%1). "
                          "Nothing was written."_s.arg(detail));
        return {};
    }
    if (!sameTree(document.root, parsed.root, &detail)) {
        (void)fail(error, u"Internal error: the edited document differs after re-parsing at %1. "
                          "Nothing was written."_s.arg(detail));
        return {};
    }
    return bytes;
}

/// How many children of `node` a save writes.
std::size_t keptChildren(const XsdtNode& node)
{
    const auto marked = std::count_if(node.children.begin(), node.children.end(),
                                      [](const auto& child) { return child->markedForDeletion; });
    return node.children.size() - static_cast<std::size_t>(marked);
}

bool sameElement(const XsdtNode& edited, const XsdtNode& parsed)
{
    return edited.kind == parsed.kind && edited.key == parsed.key &&
           edited.typeCode == parsed.typeCode && edited.value == parsed.value &&
           keptChildren(edited) == parsed.children.size();
}

} // namespace

bool SettingsStore::load(const QString& newPath, QString* error)
{
    QByteArray bytes;
    return readFile(newPath, bytes, error) && adopt(*this, newPath, bytes, error);
}

bool SettingsStore::isChangedOnDisk() const
{
    return loaded && !hasHash(path, loadedHash);
}

bool SettingsStore::isPixInsightClosed(QString* error)
{
    return PixInsightEnv::runningProcessIds().isEmpty() ||
           fail(error, u"PixInsight is running. It keeps its settings in memory and would "
                       "overwrite the file. Close PixInsight first."_s);
}

bool SettingsStore::save(QString* error, QString* backupPath, QString* remark)
{
    if (!loaded) {
        return fail(error, u"No file is loaded."_s);
    }
    if (document.pendingCount() == 0) {
        return true;
    }
    const auto mayReplace = [this](QString* why) {
        return isPixInsightClosed(why) && (!isChangedOnDisk() || failChanged(why));
    };
    if (!isPixInsightClosed(error)) {
        return false;
    }
    // Runs beside the other checks; a changed file is reported before what they find.
    std::future<bool> isChanged = std::async([this] { return isChangedOnDisk(); });
    const bool mayDelete = mayDeleteAll(*this, error);
    const QByteArray bytes = mayDelete ? serializeChecked(document, error) : QByteArray();
    if (isChanged.get()) {
        return failChanged(error);
    }
    if (bytes.isEmpty()) {
        return false;
    }
    std::future<QByteArray> newHash = std::async(sha256, bytes);
    Replacement replacement{*this, bytes, false, loadedHash, {}, {}, mayReplace, {}, {}};
    const Replacement::Outcome outcome = replacement.run(error);
    say(remark, replacement.remark);
    if (outcome == Replacement::Outcome::NoBackup) {
        if (isChangedOnDisk()) { // by now
            return failChanged(error);
        }
        return fail(error, u"Could not create the backup %1. Nothing was written."_s.arg(
                               replacement.backup));
    }
    if (outcome == Replacement::Outcome::Failed) {
        return false;
    }
    loadedHash = newHash.get();
    document.commitEdits();
    if (backupPath) {
        *backupPath = replacement.backup;
    }
    return true;
}

bool SettingsStore::restoreBackup(const QString& backupPath, QString* error, QString* remark)
{
    if (!loaded) {
        return fail(error, u"No file is loaded."_s);
    }
    const auto isClosed = [](QString* why) {
        return PixInsightEnv::runningProcessIds().isEmpty() ||
               fail(why, u"PixInsight is running. Close it before restoring a backup."_s);
    };
    if (!isClosed(error)) {
        return false;
    }
    QByteArray bytes;
    if (!readFile(backupPath, bytes, error)) {
        return false;
    }
    QString reason;
    if (XsdtDocument refused; !refused.parse(bytes, &reason)) {
        return fail(error, u"The backup is not a valid settings file: %1"_s.arg(reason));
    }
    // No other copy of the file's present content exists: it may have changed since `load`.
    Replacement replacement{*this, bytes, isMissing(path), {}, u"before-restore"_s, backupPath, {},
                            {},    {}};
    replacement.mayReplace = [&](QString* why) {
        return isClosed(why) &&
               (replacement.isUntouched() ||
                fail(why, u"The file changed on disk meanwhile (PixInsight may have "
                          "written it). Nothing was changed."_s));
    };
    const Replacement::Outcome outcome = replacement.run(error);
    say(remark, replacement.remark);
    if (outcome == Replacement::Outcome::NoBackup) {
        return fail(error, u"Could not back up the current file first. Nothing was changed."_s);
    }
    if (outcome == Replacement::Outcome::Done && !adopt(*this, path, bytes, error)) {
        say(remark, replacement.wayBack());
        return false;
    }
    return outcome == Replacement::Outcome::Done;
}

QString SettingsStore::backupName(const QString& suffix) const
{
    const QString stamp = QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString base = path + u".bak-"_s + stamp;
    if (!suffix.isEmpty()) {
        base += u'-' + suffix;
    }
    QString name = base;
    // A link that leads nowhere doesn't exist, but takes the name too.
    for (int number = 2; QFileInfo(name).isSymLink() || QFileInfo::exists(name); ++number) {
        name = base + u'-' + QString::number(number);
    }
    return name;
}

bool SettingsStore::readFile(const QString& path, QByteArray& bytes, QString* error)
{
    return readWhole(path, bytes, error);
}

bool parseSettings(XsdtDocument& document, const QByteArray& bytes, const QString& path,
                   QString* error)
{
    QString reason;
    return document.parse(bytes, &reason) ||
           fail(error, u"%1 is not a valid PixInsight settings file: %2"_s.arg(path, reason));
}

QString newestReadableBackup(const QString& settingsPath)
{
    const QStringList backups = PixInsightEnv::backupsOf(settingsPath);
    const auto newest = std::find_if(backups.begin(), backups.end(), [](const QString& backup) {
        QByteArray bytes;
        return readWhole(backup, bytes) && XsdtDocument().parse(bytes);
    });
    return newest == backups.end() ? QString() : *newest;
}

bool sameTree(const XsdtNode& edited, const XsdtNode& parsed, QString* differsAt)
{
    // For each open group of `edited`, its twin and the twin's next child.
    struct Twin
    {
        const XsdtNode* group;
        std::size_t next = 0;
    };
    OpenGroups<Twin> twins(edited, {&parsed});
    const auto visit = [&twins](const XsdtNode& node) {
        if (node.markedForDeletion) {
            return Walk::Over;
        }
        Twin& twin = twins.ofParent(node);
        const XsdtNode& other = *twin.group->children[twin.next++];
        if (!sameElement(node, other)) {
            return Walk::Stop;
        }
        if (node.kind == XsdtNode::Kind::Group) {
            twins.enter(node, {&other});
        }
        return Walk::Into;
    };
    const bool isSameSize = keptChildren(edited) == parsed.children.size();
    const XsdtNode* differing = isSameSize ? walkTree(edited, visit) : &edited;
    return !differing || fail(differsAt, differing->path());
}

} // namespace kse
