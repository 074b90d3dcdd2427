// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "session/SettingsStore.h"
#include "support/DocumentText.h"
#include "support/TextRows.h"

namespace kse {

/// All that the store holds, for comparing before and after.
inline QByteArray stateOf(const SettingsStore& store)
{
    return store.path.toUtf8() + (store.loaded ? " open " : " closed ") + store.loadedHash +
           QByteArray::number(store.document.pendingCount()) + store.document.serialize();
}

/// A settings file alone in a folder of its own, and the store that has it open.
struct StoreFixture
{
    QTemporaryDir dir{QDir(QDir::tempPath()).canonicalPath() +
                      QStringLiteral("/J\u00fcrgen \u7528\u6237 \U0001f600 %1 XXXXXX")};
    QString path = dir.filePath(QStringLiteral("core-001-pxi.settings"));
    DeletePolicy policy; ///< "Free" may be deleted, nothing else, with "Stays." as the reason.
    SettingsStore store;

    explicit StoreFixture(const QByteArray& bytes = defaultBytes())
    {
        QVERIFY(policy.load("{\"policy\": {\"defaultReason\": \"Stays.\", \"delete\": "
                            "[{\"path\": \"Free/**\", \"level\": \"safe\"}]}}") &&
                writeFile(path, bytes) && store.load(path));
        store.policy = &policy;
    }

    static QByteArray defaultBytes()
    {
        return fileBytes("<i k=\"A\"><v k=\"x\" t=\"i\" v=\"1\"/><v k=\"s\" t=\"s\">text</v></i>"
                         "<i k=\"Free\"><v k=\"y\" t=\"b\" v=\"true\"/></i>");
    }

    bool edit(QStringView at, const QString& value)
    {
        store.document.root.findByPath(at)->value = value;
        return true;
    }

    bool mark(QStringView at)
    {
        return store.document.root.findByPath(at)->markedForDeletion = true;
    }

    /// Name and content of every file in the folder.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> contents;
        const QStringList names = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
        for (const QString& name : names) {
            contents.insert(name, contentOf(dir.filePath(name)));
        }
        return contents;
    }
};

} // namespace kse
