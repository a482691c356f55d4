#include "objects.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <ctime>
#include <sys/time.h>

namespace zkqm {

QueueDef *ObjectStore::queue(const std::string &name) {
  auto it = queues.find(name);
  return it == queues.end() ? nullptr : &it->second;
}

TopicDef *ObjectStore::topic(const std::string &name) {
  auto it = topics.find(name);
  return it == topics.end() ? nullptr : &it->second;
}

Subscription *ObjectStore::subscription(const std::string &name) {
  for (Subscription &s : subscriptions) {
    if (s.name == name) {
      return &s;
    }
  }
  return nullptr;
}

namespace {

std::vector<std::string> levels(const std::string &topic) {
  std::vector<std::string> out;
  std::size_t start = 0;
  while (true) {
    std::size_t slash = topic.find('/', start);
    out.push_back(
        topic.substr(start, slash == std::string::npos ? std::string::npos : slash - start));
    if (slash == std::string::npos) {
      return out;
    }
    start = slash + 1;
  }
}

bool levelMatch(const std::vector<std::string> &p, std::size_t i, const std::vector<std::string> &t,
                std::size_t j) {
  if (i == p.size()) {
    return j == t.size();
  }
  if (p[i] == "#") {
    for (std::size_t k = j; k <= t.size(); ++k) {
      if (levelMatch(p, i + 1, t, k)) {
        return true;
      }
    }
    return false;
  }
  if (j == t.size()) {
    return false;
  }
  return (p[i] == "+" || p[i] == t[j]) && levelMatch(p, i + 1, t, j + 1);
}

bool charMatch(const char *p, const char *t) {
  if (*p == '\0') {
    return *t == '\0';
  }
  if (*p == '*') {
    for (const char *s = t;; ++s) {
      if (charMatch(p + 1, s)) {
        return true;
      }
      if (*s == '\0') {
        return false;
      }
    }
  }
  if (*t == '\0') {
    return false;
  }
  return (*p == '?' || *p == *t) && charMatch(p + 1, t + 1);
}

// The clock that message and object times come from: the real one, or the
// fixed time ZKQM_CLOCK gives (YYYYMMDDhhmmss, UTC), so that runs whose
// traces are compared show the same dates and times every time.
timeval clockNow() {
  timeval tv;
  gettimeofday(&tv, nullptr);
  const char *fixed = std::getenv("ZKQM_CLOCK");
  std::tm tm{};
  if (fixed != nullptr && std::strlen(fixed) == 14 &&
      std::sscanf(fixed, "%4d%2d%2d%2d%2d%2d", &tm.tm_year, &tm.tm_mon, &tm.tm_mday, &tm.tm_hour,
                  &tm.tm_min, &tm.tm_sec) == 6) {
    tm.tm_year -= 1900;
    tm.tm_mon -= 1;
    tv.tv_sec = timegm(&tm);
    tv.tv_usec = 0;
  }
  return tv;
}

std::string formatTime(const char *format, bool hundredths) {
  timeval tv = clockNow();
  std::tm tm;
  gmtime_r(&tv.tv_sec, &tm);
  char text[32];
  std::strftime(text, sizeof text, format, &tm);
  std::string out = text;
  if (hundredths) {
    char th[16];
    std::snprintf(th, sizeof th, "%02d", static_cast<int>(tv.tv_usec / 10000));
    out += th;
  }
  return out;
}

} // namespace

bool topicMatches(const std::string &pattern, const std::string &topic, bool characterWildcards) {
  if (characterWildcards) {
    return charMatch(pattern.c_str(), topic.c_str());
  }
  return levelMatch(levels(pattern), 0, levels(topic), 0);
}

std::string putDateNow() {
  return formatTime("%Y%m%d", false);
}

std::string putTimeNow() {
  return formatTime("%H%M%S", true);
}

std::string objectDateNow() {
  return formatTime("%Y-%m-%d", false);
}

std::string objectTimeNow() {
  return formatTime("%H.%M.%S", false);
}

} // namespace zkqm
