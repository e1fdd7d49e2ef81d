#pragma once

// The token texts that the readers ask for.
namespace Xml {

inline constexpr char kLessThen[] = "<";
inline constexpr char kGreaterThen[] = ">";
inline constexpr char kEqual[] = "=";
inline constexpr char kLessThenSlash[] = "</";
inline constexpr char kSlashGreaterThen[] = "/>";
inline constexpr char kBeginComment[] = "<!--";
inline constexpr char kEndComment[] = "-->";
inline constexpr char kBeginPI[] = "<?";
inline constexpr char kEndPI[] = "?>";

}  // namespace Xml
