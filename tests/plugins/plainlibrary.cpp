#include <QtGlobal>

// A shared library that exports something, but no plug-in.
Q_DECL_EXPORT int plainAnswer();

int plainAnswer()
{
    return 42;
}
