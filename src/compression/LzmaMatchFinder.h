/* How the encoder's match finder starts a stream. See LzmaMatchFinder.c. */

#ifdef __cplusplus
extern "C" {
#endif

/* From now on the encoders that this thread runs start behind what is in their hash, or, with 0, empty it.
 * Only encoders whose memory was zeroed when it was allocated may keep their hash. */
void LzmaMatchFinder_keepHash(int keep);

#ifdef __cplusplus
}
#endif
