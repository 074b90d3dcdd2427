// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

namespace kse {

struct XsdtDocument;
struct XsdtNode;

/// What a file records about one module.
struct ModuleSearch
{
    Q_DECLARE_TR_FUNCTIONS(ModuleSearch)

public:
    /// Looks in the places where module names usually go for `text`: a whole name or part of one.
    ModuleSearch(const XsdtDocument& document, const QString& text);

    QList<XsdtNode*> nodes; ///< The values found.
    QString banner;         ///< The sentence that says which modules these belong to.
};

/// The modules that `document` registers or holds data of, each once, sorted without case.
[[nodiscard]] QStringList knownModules(const XsdtDocument& document);

} // namespace kse
