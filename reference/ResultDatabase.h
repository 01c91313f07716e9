#pragma once
// The reference result database behind insert/get...AnalysisResult and getCheckResultMaster: a
// real SQL database through Qt SQL. By default an SQLite file, "results.sqlite" below
// Common::getPath_database(), created with its table on first use; when the host's settings name
// a PostgreSQL server the same code stores there. One table, "check_results": id, kind, job,
// step, time, description, and the parameter record and the result as JSON text.
//
// Every call opens its own connection (Qt SQL connections belong to one thread, and saves run
// on workers), so calls may come from any thread.

#include <QString>
#include <map>
#include <string>
#include <vector>

#include "DBS_API.h"
#include "Korvo_Analysis_types.h"

namespace wcref {

struct ResultDatabaseSettings {
    // "QSQLITE" or "QPSQL". An empty driver means the SQLite file below the database path.
    QString driver;
    QString name;  // file (SQLite) or database name (PostgreSQL)
    QString host;  // PostgreSQL: a host name, or the folder of a local socket
    int port = -1;
    QString user;
    QString password;
};

// What the host's settings name; applies to the calls that follow.
void setResultDatabase(const ResultDatabaseSettings& settings);
ResultDatabaseSettings resultDatabase();
// Deletes every stored check of the current database (test and demo control).
bool clearResultDatabase();

namespace resultdb {

Quorin::DBS_API::CreateSesult insertSignalCheck(const Korvo::API::dms_signal_check_params& params,
                                                const Korvo::API::signal_check_result_map& result);
bool loadSignalCheck(int id, Korvo::API::dms_signal_check_params* params,
                     Korvo::API::signal_check_result_map& result);
// id -> (kind, job, step, time, description), ids ascending.
std::map<int, std::vector<std::string>> master();

}  // namespace resultdb
}  // namespace wcref
