// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

struct XsdtDocument;

/// Reads the decoded text of a settings file into the empty `document`, but for `defaultLayout`. On
/// failure `error`, unless null, gets the reason, mostly with the line and column of the fault, and
/// the document holds what was read so far.
///
/// The format looks like XML but is narrower:
///
///     file    = prologue "<xsdt" anything ">" content "</xsdt" space ">" space
///     content = { space (group | value) } space
///     group   = "<i" K ">" content "</i" space ">"  |  "<i" K "/>"
///     value   = "<v" K T V "/>"  |  "<v" K T ">" text "</v>"
///
/// - The prologue is any text without "<xsdt". The root's start tag ends at the first ">", even
///   one inside quotes, and must not be self-closing.
/// - K, T and V are the attributes `k`, `t` and `v`, in any order and with white space around each
///   part. Other attributes are refused; of a repeated one the last counts. The quotes are ' or ",
///   and the text between them may hold anything but the same quote. `t` is one UTF-16 code unit
///   after decoding.
/// - `text` is everything up to the next "</v>" and holds no "<". White space is kept, in text and
///   in attributes.
/// - Attributes and text may hold the references &amp; &lt; &gt; &quot; &apos; and numbers such as
///   &#65; or &#x41;, with digits only and from 1 to 1114111. The number of a surrogate gives that
///   code unit. There are at most eleven characters between "&" and ";".
/// - There are no comments, instructions, declarations or CDATA after the root's start tag.
[[nodiscard]] bool readXsdt(const QString& text, XsdtDocument& document, QString* error);

} // namespace kse
