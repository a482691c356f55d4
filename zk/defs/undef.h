/* Clears the row macros after a pass over the constant families, so that the
 * next includer can define them its own way. */
#undef ZK_FAMILY_BEGIN
#undef ZK_FAMILY_END
#undef ZK_CONST
#undef ZK_NAMED
#undef ZK_ALIAS
#undef ZK_ROW
#undef ZK_FLAG_FAMILY_BEGIN
#undef ZK_FLAG_FAMILY_END
#undef ZK_FLAG
#undef ZK_STRING_FAMILY_BEGIN
#undef ZK_STRING_FAMILY_END
#undef ZK_STRING_CONST
#undef ZK_STRING_ROW
