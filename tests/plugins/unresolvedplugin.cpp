#include "unresolvedplugin.h"

Q_DECL_IMPORT extern int missingFromEveryLibrary;

int UnresolvedPlugin::missingNumber()
{
    return missingFromEveryLibrary;
}
