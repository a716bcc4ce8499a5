#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

// What came in by an input as a person reads it, in the language in force, on one line and bounded.
// GUI thread.

namespace mivohost {

/// Any message of MIDI: "Note C4 on, velocity 100, channel 1". As bytes where it has no words.
QString midiWords(const QByteArray& bytes);

/// A message of OSC with the types of its arguments: `/cue/go  int 3, float 0.5, text "a"`. Of one
/// that is longer than `bytes`, its address and its `size`; what is none is called so.
QString oscWords(const QByteArray& bytes, int size);

/// A datagram of Art-Net; of levels with `channel`, 1 to 512, or 0 where none is to be named, and
/// the number of `others` that changed as well.
QString dmxWords(const QByteArray& bytes, int channel, int others);

} // namespace mivohost
