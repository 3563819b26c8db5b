#pragma once

#include "host/host.h"
