#ifndef FFRT_API_FFRT_H
#define FFRT_API_FFRT_H

#include "c/condition_variable.h"
#include "c/mutex.h"
#include "c/queue.h"
#include "c/sleep.h"
#include "c/task.h"
#include "c/type_def.h"

#ifdef __cplusplus
#include "cpp/condition_variable.h"
#include "cpp/mutex.h"
#include "cpp/sleep.h"
#include "cpp/task.h"
#endif

#endif // FFRT_API_FFRT_H
