#include "transport/HttpAnswerParser.h"
