#pragma once

namespace mivohost {

/// A program with windows gets no console: what it prints is to be seen in the one from which it
/// was started, if any, unless it goes elsewhere. Windows alone; at the start of the program.
void useConsole();

} // namespace mivohost
