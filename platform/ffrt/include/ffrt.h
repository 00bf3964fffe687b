#ifndef FFRT_API_FFRT_H
#define FFRT_API_FFRT_H

#include "c/type_def.h"
#include "c/task.h"
#include "c/queue.h"
#include "c/mutex.h"
#include "c/condition_variable.h"
#include "c/sleep.h"

#ifdef __cplusplus
#include "cpp/task.h"
#include "cpp/mutex.h"
#include "cpp/condition_variable.h"
#include "cpp/sleep.h"
#endif

#endif // FFRT_API_FFRT_H
