// SPDX-License-Identifier: MIT
#include "views/search/ModuleSearch.h"

#include "schema/ModuleCatalog.h"

using namespace Qt::StringLiterals;

namespace kse {

ModuleSearch::ModuleSearch(const XsdtDocument& document, const QString& text)
{
    bool exact = false;
    QStringList captions;
    const auto modules = ModuleCatalog::searchModules(document, text, &exact);
    for (const ModuleInfo& info : modules) {
        nodes += ModuleCatalog::moduleLeaves(info);
        captions.append((info.registered ? tr("%1 (installed)") : tr("%1 (not in the module list)"))
                            .arg(info.name));
    }
    const int count = int(nodes.size());
    banner = exact
                 ? tr("Module search for \"%1\": registry entry, module data, module settings and "
                      "process entries - %2, %n value(s). Type words below to narrow them.",
                      nullptr, count)
                 : tr("No module is called exactly \"%1\"; showing modules whose name contains "
                      "it: %2 - %n value(s).",
                      nullptr, count);
    banner = banner.arg(text, captions.join(u", "_s));
}

QStringList knownModules(const XsdtDocument& document)
{
    QStringList names =
        ModuleCatalog::registeredModules(document) + ModuleCatalog::modulesWithData(document);
    names.removeDuplicates();
    names.sort(Qt::CaseInsensitive);
    return names;
}

} // namespace kse
