#ifndef ACCESS_TOKEN_H
#define ACCESS_TOKEN_H

#include "access_token_basic_type.h"

#endif // ACCESS_TOKEN_H
