#pragma once

#include <vel/records.h>
