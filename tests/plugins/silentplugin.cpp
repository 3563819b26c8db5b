#include "silentplugin.h"
