// XPIF job-ticket templates for the same three kinds of special pages, with %s placeholders in the
// order of the dialog's fields. The device takes the pages as attribute lines; the templates say
// which fields a page has and in which order they come.

#pragma once

#include <cstddef>
#include <string_view>

// How many fields a template takes.
constexpr std::size_t XPIFFieldCount(std::string_view block) {
  std::size_t count = 0;
  for (std::size_t i = 0; i + 1 < block.size(); i++)
    count += block[i] == '%' && block[i + 1] == 's';
  return count;
}

inline constexpr char xpifSYSTEM[] = "xpif-v02030a.dtd";
inline constexpr char xpifVersion[] = "1.0";
inline constexpr char cpssVersion[] = "2.01";
inline constexpr char xmlLang[] = "en-US";

// Version and encoding; DTD; version, cpss-version and language.
inline constexpr char XPIFCommandBlockStart[] = R"(<?xml version="%s" encoding="%s"?>
<!DOCTYPE xpif SYSTEM "%s">
<xpif version="%s" cpss-version="%s" xml:lang="%s">
  <job-template-attributes>
)";
inline constexpr char XPIFCommandBlockEnd[] = R"(  </job-template-attributes>
</xpif>
)";

inline constexpr char CoverFrontBlockStart[] = R"(    <cover-front syntax="collection">
)";
inline constexpr char CoverFrontBlockEnd[] = R"(    </cover-front>
)";
inline constexpr char CoverBackBlockStart[] = R"(    <cover-back syntax="collection">
)";
inline constexpr char CoverBackBlockEnd[] = R"(    </cover-back>
)";

// Cover type, media type, media colour, width, height.
inline constexpr char CoverBlockData[] = R"(        <cover-type syntax="keyword">%s</cover-type>
        <media-col syntax="collection">
            <media-type syntax="keyword">%s</media-type>
            <media-color syntax="keyword">%s</media-color>
            <media-size syntax="collection">
                <x-dimension syntax="integer">%s</x-dimension>
                <y-dimension syntax="integer">%s</y-dimension>
            </media-size>
        </media-col>
)";

// Cover type, media type.
inline constexpr char CoverInterposerBlockData[] =
    R"(        <cover-type syntax="keyword">%s</cover-type>
        <media-col syntax="collection">
            <media-type syntax="name">%s</media-type>
        </media-col>
)";

inline constexpr char InsertionBlockStart[] = R"(    <insert-sheet syntax="1setOf">
)";
inline constexpr char InsertionBlockEnd[] = R"(    </insert-sheet>
)";

// Page to insert after, count, media colour, width, height, media type.
inline constexpr char InsertionBlockData[] = R"(        <value syntax="collection">
                <insert-after-page-number syntax="integer">%s</insert-after-page-number>
                <insert-count syntax="integer">%s</insert-count>
                <media-col syntax="collection">
                    <media-color syntax="keyword">%s</media-color>
                    <media-size syntax="collection">
                        <x-dimension syntax="integer">%s</x-dimension>
                        <y-dimension syntax="integer">%s</y-dimension>
                    </media-size>
                    <media-type syntax="keyword">%s</media-type>
                </media-col>
        </value>
)";

// Page to insert after, count, media type.
inline constexpr char InsertionInterposerBlockData[] = R"(        <value syntax="collection">
                <insert-after-page-number syntax="integer">%s</insert-after-page-number>
                <insert-count syntax="integer">%s</insert-count>
                <media-col syntax="collection">
                    <media-type syntax="name">%s</media-type>
                </media-col>
        </value>
)";

inline constexpr char ExceptionBlockStart[] = R"(    <page-overrides syntax="1setOf">
)";
inline constexpr char ExceptionBlockEnd[] = R"(    </page-overrides>
)";

// Documents from and to, pages from and to, sides and media type: what every exception begins with.
#define XPIF_EXCEPTION_HEAD                                                        \
  "        <value syntax=\"collection\">\n"                                        \
  "                <input-documents syntax=\"1setOf\">\n"                          \
  "                    <value syntax=\"rangeOfInteger\">\n"                        \
  "                            <lower-bound syntax=\"integer\">%s</lower-bound>\n" \
  "                            <upper-bound syntax=\"integer\">%s</upper-bound>\n" \
  "                    </value>\n"                                                 \
  "                </input-documents>\n"                                           \
  "                <pages syntax=\"1setOf\">\n"                                    \
  "                    <value syntax=\"rangeOfInteger\">\n"                        \
  "                            <lower-bound syntax=\"integer\">%s</lower-bound>\n" \
  "                            <upper-bound syntax=\"integer\">%s</upper-bound>\n" \
  "                    </value>\n"                                                 \
  "                </pages>\n"                                                     \
  "                <sides syntax=\"keyword\">%s</sides>\n"                         \
  "                <media-col syntax=\"collection\">\n"                            \
  "                    <media-type syntax=\"name\">%s</media-type>\n"
#define XPIF_EXCEPTION_END         \
  "                </media-col>\n" \
  "        </value>\n"

// What the head has, then media colour, width, height.
inline constexpr char ExceptionBlockData[] = XPIF_EXCEPTION_HEAD
    R"(                    <media-color syntax="keyword">%s</media-color>
                    <media-size syntax="collection">
                        <x-dimension syntax="integer">%s</x-dimension>
                        <y-dimension syntax="integer">%s</y-dimension>
                    </media-size>
)" XPIF_EXCEPTION_END;

// What the head has.
inline constexpr char ExceptionInterposerBlockData[] = XPIF_EXCEPTION_HEAD XPIF_EXCEPTION_END;

#undef XPIF_EXCEPTION_HEAD
#undef XPIF_EXCEPTION_END
