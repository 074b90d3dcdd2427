// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

namespace kse {

/// Decodes the references of `input`, such as `&amp;` and `&#65;`, into `output`. False if one of
/// them is wrong: `reason` then says how, and `output` holds no useful text.
[[nodiscard]] bool decodeEntities(QStringView input, QString& output, QString& reason);

} // namespace kse
