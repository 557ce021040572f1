/* The encoder empties its match finder's hash, half a megabyte, before each stream: for a short text that is nearly all
 * of its time, and 64 bytes are compressed 11 times as fast without it. Here the next stream can start behind all
 * positions of the one before instead, further than the window reaches, so that what is still in the hash counts as
 * empty. The streams are the same.
 *
 * LzFind.c is compiled with MatchFinder_CreateVTable renamed, so that the encoder gets this one. */

#include "LzmaMatchFinder.h"

#include <LzFind.h>

void SdkMatchFinder_CreateVTable(CMatchFinder* finder, IMatchFinder* table);

enum { FURTHEST = 1 << 30 };

static _Thread_local int keepsHash = 0;

void LzmaMatchFinder_keepHash(int keep)
{
    keepsHash = keep;
}

static void start(void* object)
{
    CMatchFinder* finder = object;
    const UInt32 used = finder->pos; /* 0 in a new encoder, whose memory is zeroed */
    const UInt32 hashSize = finder->hashSizeSum;
    if (!keepsHash || used > FURTHEST || finder->directInputRem > FURTHEST) {
        MatchFinder_Init(finder); /* long before positions could run over */
        return;
    }
    finder->hashSizeSum = 0; /* nothing to empty */
    MatchFinder_Init(finder);
    finder->hashSizeSum = hashSize;
    MatchFinder_ReduceOffsets(finder, 0 - used); /* moves them up */
}

void MatchFinder_CreateVTable(CMatchFinder* finder, IMatchFinder* table)
{
    SdkMatchFinder_CreateVTable(finder, table);
    table->Init = start;
}
