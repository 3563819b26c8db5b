#include "objectplugin.h"
