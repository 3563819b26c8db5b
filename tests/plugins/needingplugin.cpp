#include "needingplugin.h"

Q_DECL_IMPORT int plainAnswer();

int NeedingPlugin::neededNumber()
{
    return plainAnswer();
}
