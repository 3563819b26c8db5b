#pragma once

/// How the program prints.
enum class OutputFormat {
    Table, ///< aligned columns for people
    Json,  ///< one JSON object a line
    Csv    ///< comma-separated values; cycles only
};
