#include "fix/profile/broker_profile.h"
