#pragma once

// The library's headers promise what they throw, which the language has given up. The standard headers that
// they include come first, so that the promises are taken away from them alone.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <queue>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#define HAVE_STD_SHARED_PTR 1
#define HAVE_STD_UNIQUE_PTR 1
#define throw(...)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wdeprecated"
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <quickfix/Application.h>
#include <quickfix/DataDictionary.h>
#include <quickfix/DataDictionaryProvider.h>
#include <quickfix/Log.h>
#include <quickfix/Message.h>
#include <quickfix/MessageStore.h>
#include <quickfix/Responder.h>
#include <quickfix/Session.h>
#include <quickfix/SessionID.h>
#pragma GCC diagnostic pop
#undef throw
