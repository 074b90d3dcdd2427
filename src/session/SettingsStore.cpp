// SPDX-License-Identifier: MIT
#include "session/SettingsStore.h"

#include "document/Fail.h"
#include "schema/DeletePolicy.h"
#include "session/PixInsightEnv.h"
#include "session/VerifiedFile.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace kse {

using namespace Qt::StringLiterals;

namespace {

bool failChanged(QString* error)
{
    return fail(error, u"The file changed on disk since it was loaded (PixInsight may have "
                       "written it). Reload it and redo your edits."_s);
}

/// Makes `bytes`, whose hash is `hash`, the content of `store`: the last step of whatever opens a
/// file. On failure nothing is loaded any more.
bool adopt(SettingsStore& store, const QString& path, const QByteArray& bytes,
           const QByteArray& hash, QString* error)
{
    QString reason;
    if (!store.document.parse(bytes, &reason)) {
        store.loaded = false;
        return fail(error, u"%1 is not a valid PixInsight settings file: %2"_s.arg(path, reason));
    }
    store.path = path;
    store.loadedHash = hash;
    store.loaded = true;
    return true;
}

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

/// The new bytes of `document`, or none if the reader doesn't give back from them what was meant.
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

bool sameElement(const XsdtNode& a, const XsdtNode& b)
{
    return a.kind == b.kind && a.key == b.key &&
           (a.kind == XsdtNode::Kind::Group || (a.typeCode == b.typeCode && a.value == b.value));
}

/// How many children of `node` a save writes.
std::size_t keptChildren(const XsdtNode& node)
{
    const auto marked = std::count_if(node.children.begin(), node.children.end(),
                                      [](const auto& child) { return child->markedForDeletion; });
    return node.children.size() - static_cast<std::size_t>(marked);
}

} // namespace

bool SettingsStore::load(const QString& newPath, QString* error)
{
    QByteArray bytes;
    return readFile(newPath, bytes, error) && adopt(*this, newPath, bytes, sha256(bytes), error);
}

bool SettingsStore::isChangedOnDisk() const
{
    if (!loaded) {
        return false;
    }
    QByteArray bytes;
    return !readFile(path, bytes) || sha256(bytes) != loadedHash;
}

bool SettingsStore::save(QString* error, QString* backupPath, QString* recoverFrom)
{
    if (!loaded) {
        return fail(error, u"No file is loaded."_s);
    }
    if (document.pendingCount() == 0) {
        return true;
    }
    if (!PixInsightEnv::runningProcessIds().isEmpty()) {
        return fail(error, u"PixInsight is running. It keeps its settings in memory and would "
                           "overwrite the file. Close PixInsight first."_s);
    }
    if (isChangedOnDisk()) {
        return failChanged(error);
    }
    if (!mayDeleteAll(*this, error)) {
        return false;
    }
    const QByteArray bytes = serializeChecked(document, error);
    if (bytes.isEmpty()) {
        return false;
    }
    const QString backup = backupName();
    if (!copyVerified(path, backup, loadedHash)) {
        if (isChangedOnDisk()) { // by now
            return failChanged(error);
        }
        return fail(error, u"Could not create the backup %1. Nothing was written."_s.arg(backup));
    }
    bool replaced = false;
    if (!writeVerified(path, bytes, replaced, error)) {
        if (replaced && recoverFrom) {
            *recoverFrom = backup;
        }
        return false;
    }
    loadedHash = sha256(bytes);
    document.commitEdits();
    if (backupPath) {
        *backupPath = backup;
    }
    return true;
}

bool SettingsStore::restoreBackup(const QString& backupPath, QString* error, QString* recoverFrom)
{
    if (!loaded) {
        return fail(error, u"No file is loaded."_s);
    }
    if (!PixInsightEnv::runningProcessIds().isEmpty()) {
        return fail(error, u"PixInsight is running. Close it before restoring a backup."_s);
    }
    QByteArray bytes;
    if (!readFile(backupPath, bytes, error)) {
        return false;
    }
    QString reason;
    if (XsdtDocument refused; !refused.parse(bytes, &reason)) {
        return fail(error, u"The backup is not a valid settings file: %1"_s.arg(reason));
    }
    const QString former = backupName(u"before-restore"_s);
    // Nothing else holds what the file is now, whatever that is: it may have changed since `load`.
    QByteArray current;
    if (!readFile(path, current) || !copyVerified(path, former, sha256(current))) {
        return fail(error, u"Could not back up the current file first. Nothing was changed."_s);
    }
    bool replaced = false;
    const bool restored = writeVerified(path, bytes, replaced, error) &&
                          adopt(*this, path, bytes, sha256(bytes), error);
    if (!restored && replaced && recoverFrom) {
        *recoverFrom = former;
    }
    return restored;
}

QString SettingsStore::backupName(const QString& suffix) const
{
    const QString stamp = QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString base = path + u".bak-"_s + stamp;
    if (!suffix.isEmpty()) {
        base += u'-' + suffix;
    }
    QString name = base;
    for (int number = 2; QFileInfo::exists(name); ++number) {
        name = base + u'-' + QString::number(number);
    }
    return name;
}

bool SettingsStore::readFile(const QString& path, QByteArray& bytes, QString* error)
{
    return readWhole(path, bytes, error);
}

bool sameTree(const XsdtNode& edited, const XsdtNode& parsed, QString* differsAt)
{
    // The pairs of groups between the root and where the comparison stands.
    struct Level
    {
        const XsdtNode* edited;
        const XsdtNode* parsed;
        std::size_t nextEdited = 0;
        std::size_t nextParsed = 0;
    };
    std::vector<Level> levels;
    const auto enter = [&levels](const XsdtNode& a, const XsdtNode& b) {
        levels.push_back({&a, &b});
        return keptChildren(a) == b.children.size();
    };
    const auto differs = [differsAt](const XsdtNode& at) {
        return fail(differsAt, at.path());
    };
    if (!enter(edited, parsed)) {
        return differs(edited);
    }
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.nextEdited == level.edited->children.size()) {
            levels.pop_back();
            continue;
        }
        const XsdtNode& a = *level.edited->children[level.nextEdited++];
        if (a.markedForDeletion) {
            continue;
        }
        const XsdtNode& b = *level.parsed->children[level.nextParsed++];
        if (!sameElement(a, b) || (a.kind == XsdtNode::Kind::Group && !enter(a, b))) {
            return differs(a);
        }
    }
    return true;
}

} // namespace kse
