#pragma once

#include <QByteArray>

class Memory;
struct Line;
struct Profile;

/// What a controller with such a memory answers to one command, ended by CR LF. A command that is
/// refused changes nothing.
QByteArray answerTo(const Line &line, const Profile &profile, Memory *memory);
