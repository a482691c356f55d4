/* dspzkver: the platform's level display. It prints the name, version,
 * maintenance level and build type of the installed ZK platform, one
 * "Key: value" line each, as the exit reads them for the profile at the
 * head of its trace files. */
#include <stdio.h>
#include <string.h>
#include <sys/utsname.h>

#define ZK_NAME "ZK"
#define ZK_VERSION "8.4.2.1"
#define ZK_LEVEL "z842-L240315"
#define ZK_BUILD_TYPE "ZKPR - (Production)"
#define ZK_COMMAND_LEVEL "842"

int main(int argc, char **argv) {
  if (argc > 1 && (strcmp(argv[1], "-h") == 0 || strcmp(argv[1], "--help") == 0)) {
    puts("usage: dspzkver\n  displays the level of the installed ZK platform");
    return 0;
  }
  if (argc > 1) {
    fprintf(stderr, "dspzkver: unknown argument '%s'\n", argv[1]);
    return 2;
  }
  struct utsname os;
  const char *system = "Linux";
  char release[128] = "";
  if (uname(&os) == 0) {
    system = os.sysname;
    snprintf(release, sizeof release, " %s", os.release);
  }
  printf("Name:        %s\n", ZK_NAME);
  printf("Version:     %s\n", ZK_VERSION);
  printf("Level:       %s\n", ZK_LEVEL);
  printf("BuildType:   %s\n", ZK_BUILD_TYPE);
  printf("Platform:    ZK for %s (x86 platform)\n", system);
  printf("Mode:        32-bit\n");
  printf("O/S:         %s%s\n", system, release);
  printf("MaxCmdLevel: %s\n", ZK_COMMAND_LEVEL);
  return 0;
}
