/* The sanitizers' settings for the programs of a WZ_SANITIZE build (zkqm,
 * dspzkver, the unit tests). The runtimes read them at start-up, before
 * ASAN_OPTIONS, UBSAN_OPTIONS and LSAN_OPTIONS, which can still change
 * them; built in, they also hold where a test runs its programs with an
 * environment of its own (env -i).
 *
 * Every report ends the process at once with exit status 86, a status
 * that none of zkqm's own outcomes uses (0 to 4), so that a test that
 * expects zkqm to fail on purpose still notices a report. Leaks are
 * reported when the process exits normally. No core files: a report
 * already says where it happened. An allocation that cannot be made
 * returns null, as it does without the sanitizers, so that the tests of
 * the exit's answer to a failed allocation run here too.
 */

const char *__asan_default_options(void);
const char *__ubsan_default_options(void);

const char *__asan_default_options(void) {
  return "halt_on_error=1:abort_on_error=0:exitcode=86:disable_coredump=1"
         ":detect_leaks=1:check_initialization_order=1:strict_init_order=1"
         ":detect_stack_use_after_return=1:strict_string_checks=1"
         ":allocator_may_return_null=1";
}

const char *__ubsan_default_options(void) {
  return "halt_on_error=1:abort_on_error=0:exitcode=86:disable_coredump=1"
         ":print_stacktrace=1";
}
