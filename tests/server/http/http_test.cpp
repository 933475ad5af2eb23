#include "server/http/http.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kelvora::server {
namespace {

using Result = HttpReader::Result;

HttpRequest request(const std::string& text) {
  HttpReader reader;
  EXPECT_EQ(reader.read(text), Result::complete) << text;
  return reader.request();
}

HttpRequest target(const std::string& target) { return request("GET " + target + " HTTP/1.1\r\n\r\n"); }

TEST(HttpRequest, ThePathIsTheTargetWithoutHostAndQuery) {
  EXPECT_EQ(target("/a/b?c=/d").path(), "/a/b");
  EXPECT_EQ(target("http://host:81/a?b").path(), "/a");
  EXPECT_EQ(target("http://host").path(), "/");
  EXPECT_EQ(target("/http://host/a").path(), "/http://host/a");
  EXPECT_EQ(target("*").path(), "*");
}

TEST(HttpRequest, ArgumentsAreDecoded) {
  const HttpRequest query = target("/a?one=1&two=a%20b+c&three&one=2&f%6fur=%41&bad=%4&worse=%zz&=x&last=50%");
  EXPECT_EQ(query.argument("one"), "1");
  EXPECT_EQ(query.argument("two"), "a b c");
  EXPECT_EQ(query.argument("three"), "");
  EXPECT_EQ(query.argument("four"), "A");
  EXPECT_EQ(query.argument("bad"), "%4");
  EXPECT_EQ(query.argument("worse"), "%zz");
  EXPECT_EQ(query.argument("last"), "50%");
  EXPECT_EQ(query.argument("none"), "");
  EXPECT_EQ(target("/one=1").argument("one"), "");
}

TEST(HttpReader, FindsTheEndOfTheHeadAcrossPieces) {
  const std::string text = "POST /x HTTP/1.1\r\nHost: h:1\r\nOrigin: http://p\r\nContent-Length: 3\r\n\r\nabc";
  HttpReader reader;
  const std::size_t end = text.find("abc");
  for (std::size_t i = 0; i + 1 < end; ++i) ASSERT_EQ(reader.read(text.substr(i, 1)), Result::partial) << i;
  ASSERT_EQ(reader.read(text.substr(end - 1)), Result::complete);
  EXPECT_EQ(reader.head(), text.substr(0, end));
  EXPECT_EQ(reader.rest(), "abc");
  EXPECT_EQ(reader.request().method, "POST");
  EXPECT_EQ(reader.request().target, "/x");
  EXPECT_EQ(reader.request().host, "h:1");
  EXPECT_EQ(reader.request().origin, "http://p");
}

TEST(HttpReader, KeepsAConnectionOnlyWithoutABody) {
  EXPECT_TRUE(request("GET / HTTP/1.1\r\n\r\n").keepsAlive);
  EXPECT_TRUE(request("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n").keepsAlive);
  EXPECT_FALSE(request("GET / HTTP/1.0\r\n\r\n").keepsAlive);
  EXPECT_FALSE(request("GET / HTTP/1.1\r\nConnection: close\r\n\r\n").keepsAlive);
  EXPECT_FALSE(request("POST / HTTP/1.1\r\nContent-Length: 1\r\n\r\n").keepsAlive);
  EXPECT_FALSE(request("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n").keepsAlive);
}

TEST(HttpReader, ParsesTheAcceptHeaders) {
  EXPECT_TRUE(request("GET / HTTP/1.1\r\nAccept-Encoding: br, gzip\r\n\r\n").acceptsGzip);
  EXPECT_TRUE(request("GET / HTTP/1.1\r\nAccept-Encoding: br;q=1.0, GZIP;q=0.8\r\n\r\n").acceptsGzip);
  for (const char* list : {"gzipped", "gzip;q=0", "br, gzip; q=0.000", "identity", ""}) {
    EXPECT_FALSE(request("GET / HTTP/1.1\r\nAccept-Encoding: " + std::string(list) + "\r\n\r\n").acceptsGzip) << list;
  }
  EXPECT_TRUE(request("GET /play HTTP/1.1\r\nHost: h\r\nConnection: keep-alive, Upgrade\r\nUpgrade: websocket\r\n"
                      "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n")
                  .isUpgrade);
  EXPECT_FALSE(request("GET /play HTTP/1.1\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n").isUpgrade);
}

TEST(HttpReader, IgnoresOneEmptyLineBeforeARequest) {
  const std::string bytes = "\r\nGET /a HTTP/1.1\r\nHost: h\r\n\r\n";
  for (std::size_t size = 1; size <= bytes.size(); ++size) {
    HttpReader reader;
    Result result = Result::partial;
    for (std::size_t at = 0; at < bytes.size(); at += size) result = reader.read(bytes.substr(at, size));
    EXPECT_EQ(result, Result::complete) << size;
    EXPECT_EQ(reader.request().target, "/a") << size;
    EXPECT_EQ(reader.rest(), "") << size;
  }
}

TEST(HttpReader, OnlyACapitalBeginsARequest) {
  for (const std::string bytes :
       {"\r\n\r\n", "\n\nGET", "\rG", "\r\n\x80", "\r\nget", "get", "@A", "[A", "\r\n\r\n\0\r\nQUIT\n"}) {
    HttpReader reader;
    EXPECT_EQ(reader.read(bytes), Result::malformed) << bytes;
  }
  HttpReader line;
  EXPECT_EQ(line.read("\r"), Result::partial);
  EXPECT_EQ(line.read("\n"), Result::partial);
  EXPECT_EQ(line.read("AZ"), Result::partial);
  HttpReader last;
  EXPECT_EQ(last.read("ZA"), Result::partial);
}

TEST(HttpReader, ManyConditionsAreOneList) {
  EXPECT_EQ(
      request("GET / HTTP/1.1\r\nIf-None-Match: \"a\"\r\nHost: h\r\nIf-None-Match: \"b\", W/\"c\"\r\n\r\n").ifNoneMatch,
      "\"a\", \"b\", W/\"c\"");
}

TEST(HttpReader, AConditionalRangeIsTheWholeFile) {
  EXPECT_EQ(request("GET / HTTP/1.1\r\nRange: bytes=0-1\r\n\r\n").range, "bytes=0-1");
  EXPECT_EQ(request("GET / HTTP/1.1\r\nRange: bytes=0-1\r\nIf-Range: \"a\"\r\n\r\n").range, "");
}

TEST(HttpReader, TheLastForwardingLineIsTheProxys) {
  EXPECT_EQ(request("GET / HTTP/1.1\r\nX-Forwarded-For: 192.0.2.1\r\nHost: h\r\nx-forwarded-for: 192.0.2.2\r\n\r\n")
                .forwardedFor,
            "192.0.2.2");
  EXPECT_EQ(request("GET / HTTP/1.1\r\n\r\n").forwardedFor, "");
}

TEST(HttpReader, AHeadMayHave4096Bytes) {
  const std::string start = "GET / HTTP/1.1\r\nA: ";
  const std::string end = "\r\n\r\n";
  const std::string longest = start + std::string(HttpReader::maxHead - start.size() - end.size(), 'a') + end;
  EXPECT_EQ(HttpReader().read(longest), Result::complete);
  EXPECT_EQ(HttpReader().read("G" + longest), Result::tooLong);
  EXPECT_EQ(HttpReader().read(std::string(HttpReader::maxHead, 'G')), Result::partial);
  EXPECT_EQ(HttpReader().read(std::string(HttpReader::maxHead + 1, 'G')), Result::tooLong);
  HttpReader pieces;
  EXPECT_EQ(pieces.read(std::string(HttpReader::maxHead, 'G')), Result::partial);
  EXPECT_EQ(pieces.read("\r\n\r\n"), Result::tooLong);
  EXPECT_EQ(HttpReader().read(longest + std::string(10'000, 'b')), Result::complete) << "what follows is no head";
}

TEST(HttpReader, RefusesInvalidRequests) {
  for (const char* text : {"GET\r\n\r\n", "GET /\r\n\r\n", "GET / HTTP/9.9\r\n\r\n", "GET / HTTP/1.1\r\nA\r\n\r\n",
                           "GET / HTTP/1.1\r\nContent-Length: -1\r\n\r\n", "G@T / HTTP/1.1\r\n\r\n",
                           "GET / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n", "\r\n\r\n"}) {
    EXPECT_EQ(HttpReader().read(text), Result::malformed) << text;
  }
}

TEST(HttpAnswer, StatesTheWholeLength) {
  HttpAnswer answer{.status = 404, .body = "abc", .headers = {"A: b"}};
  answer.moreSize = 1'000;
  EXPECT_EQ(answer.head(false),
            "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\nContent-Length: 1003\r\nConnection: close\r\nA: "
            "b\r\n\r\n");
  EXPECT_EQ(HttpAnswer{.status = 304}.head(true), "HTTP/1.1 304 Not Modified\r\nConnection: keep-alive\r\n\r\n");
}

TEST(HttpAnswer, AppendedTextComesInPieces) {
  const auto text = std::make_shared<const std::string>("one text in four");
  HttpAnswer answer;
  answer.append(text);
  EXPECT_EQ(answer.moreSize, text->size());
  std::string all;
  for (int piece = 0; piece < 4; ++piece) all += answer.more(4);
  EXPECT_EQ(all, *text);
  EXPECT_EQ(answer.more(4), "");
}

}  // namespace
}  // namespace kelvora::server
