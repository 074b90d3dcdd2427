// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>

#include <functional>

namespace kse {

/// What goes wrong with this program's own calls for files below a folder, while `active` points to
/// it. On Linux only, in programs that FaultyCalls.cpp is part of.
struct Faults
{
    struct Call
    {
        QByteArray name;
        int error;    ///< 0 if it worked.
        quint64 file; ///< Its number (inode).
        QByteArray path;
    };

    QByteArray folder; ///< An absolute path free of links.
    /// "error": the call isn't made, and fails with `code`; "late": it is made, and yet fails;
    /// "lost": a write or a change of mode has no effect, and yet seems to work; "short": a read or
    /// a write does half of its work; "kill": the process is killed after the call; "torn": after
    /// half of it if it reads or writes; all else: `meanwhile` is called before the call.
    QByteArray kind;
    int code = 0;
    std::function<void()> meanwhile;
    int at = 0;           ///< Which call goes wrong, from 1.
    bool lasting = false; ///< Whether all later ones go wrong too.
    bool named = false;   ///< Whether there are no files without a name and no hard links.

    QList<Call> calls;   ///< Those made.
    QByteArray freeName; ///< The name for a backup that was last found to be free.

    inline static Faults* active = nullptr;
};

} // namespace kse
