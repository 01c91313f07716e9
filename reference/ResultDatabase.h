#pragma once
// The reference result database behind insert/get...AnalysisResult, getCheckResultMaster, the
// waivers and the list of stored runs: a real SQL database through Qt SQL. By default an SQLite
// file, "results.sqlite" below Common::getPath_database(), created with its tables on first use;
// when the host's settings name a PostgreSQL server the same code stores there.
//
// Tables: "check_results" (id, kind, job, step, created, description, and the parameter record
// and the result as JSON text), "waivers" (id, kind, job, step, scope, item, layer, nets as a
// JSON array, identity, and "covers", unique, which names the hits the waiver covers) and
// "waiver_reasons" (id, waiver_id, reason, user_name, created).
//
// Every call opens its own connection (Qt SQL connections belong to one thread, and saves run
// on workers), so calls may come from any thread; what one call writes, the next call of any
// thread reads. Writes of more than one row run in one transaction; SQLite's write lock is
// taken at its start, so two writers queue instead of failing.
//
// Faults answer false (or a CreateSesult without success) with a message, and write nothing:
// - an SQLite file that is not a database of ours (not SQLite, cut off, or holding other tables)
//   is named in the message and never written to;
// - an SQLite file this process has used and that is gone since answers "The result database
//   %1 is no longer there." and is not made anew; a file never used before is created;
// - a PostgreSQL server that does not answer gives up after the host's timeout
//   (Korvo::UIAPI::getTimeout(), at least 2 s), with the driver's reason.

#include <QString>
#include <map>
#include <string>
#include <vector>

#include "DBS_API.h"
#include "Korvo_Analysis_types.h"
#include "Korvo_Triage_types.h"

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
// Deletes every stored check and waiver of the current database (test and demo control).
bool clearResultDatabase();

namespace resultdb {

Quorin::DBS_API::CreateSesult insertSignalCheck(const Korvo::API::dms_signal_check_params& params,
                                                const Korvo::API::signal_check_result_map& result);
bool loadSignalCheck(int id, Korvo::API::dms_signal_check_params* params,
                     Korvo::API::signal_check_result_map& result);
// id -> (kind, job, step, time, description), ids ascending.
std::map<int, std::vector<std::string>> master();

// The answers of Korvo::API's waiver and run calls (Korvo_API.h). A waiver's time is the
// database's; a net-pair waiver covers its nets on every layer, so its layer and identity are
// not kept.
Quorin::DBS_API::CreateSesult insertWaiver(const Korvo::API::analysis_waiver& waiver);
bool loadWaivers(const std::string& kind, const std::string& job, const std::string& step,
                 std::vector<Korvo::API::analysis_waiver>& waivers, std::string& error);
bool deleteWaiver(int id, std::string& error);
bool listRuns(const std::string& kind, const std::string& job, const std::string& step,
              std::vector<Korvo::API::analysis_run_info>& runs, std::string& error);

}  // namespace resultdb
}  // namespace wcref
