#pragma once

namespace qv3::test {

/// The first argument of a process that is to be the driven program instead of the tests.
inline constexpr char kDriven[] = "--driven";

/// The whole program, on the real machine, with a user who is told on standard input what to do, a
/// line at a time, and answers each line with what the window then shows, as JSON in one line:
///
///   look              nothing but the answer
///   click NAME        a button of the window
///   menu NAME         an item of the menu
///   answer TEXT       the button of that text in the box that is open
///   choose PATH       a path in the file dialog that is open
///   cancel            Escape in the box or dialog that is open
///   close             the window's X
///   clock SECONDS     the wall clock is set on, or back
///   room BYTES        so much is left on every disk
int runDriven(int argc, char** argv);

}  // namespace qv3::test
