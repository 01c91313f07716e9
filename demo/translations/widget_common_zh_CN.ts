<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="zh_CN">
<context>
    <name>BackgroundRun</name>
    <message>
        <source>Processing</source>
        <translation>处理中</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Please wait</source>
        <translation>请稍候</translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Grc_Tbv_featuresfilter</name>
    <message>
        <source>Snap Features</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Include Symbols:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Exclude Symbols:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Include Attributes:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>...</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Exclude Attributes:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Text filter:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Lines</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Ovals</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Length</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Angle</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Min:</source>
        <translation>最小 :</translation>
    </message>
    <message>
        <source>Max:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>User filter ...</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Dcode :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Filter</source>
        <translation>过滤</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Attributes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>All Profile</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>In Profile</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Out Profile</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Advanced ...</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Search</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Unselect</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Turn Off</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Histogram</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Feature Seleciton filter</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Features Filter Popup</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Single selection</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Multi selection</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close &amp;&amp; Reset</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Reports</name>
    <message>
        <source>The report has no result, or the result's hits are not numbered.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waivers of the report were not applied to its result.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The earlier run of the report was not compared with its result.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The report %1 cannot be written: %2.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>it is a folder</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the folder %1 does not exist</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The report %1 already exists and was left as it is.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>the device refused the data</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Waivers</name>
    <message>
        <source>The file %1 is not a waiver file: "%2" is missing or not a text.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: "%2" is missing or not a whole number.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: "%2" is missing or not a list.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: "%2" is not an object.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: "%2" is neither "hit" nor "net pair".</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 holds waivers of the %2 analysis, not of the %3 analysis.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 is for job %2, step %3, not for job %4, step %5.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: it holds no JSON object.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The file %1 is not a waiver file: "format" is not "waivers".</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 is of version %2; this program reads version %3.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 cannot be written: %2.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 cannot be read: %2.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The waiver file %1 is not JSON: %2 at offset %3.</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_Contourize</name>
    <message>
        <source>Accuracy :</source>
        <translation>精度 :</translation>
    </message>
    <message>
        <source>     Clean Holes</source>
        <translation>     清除孔洞</translation>
    </message>
    <message>
        <source>Max Size :</source>
        <translation>最大尺寸 :</translation>
    </message>
    <message>
        <source>Separate to Islands :</source>
        <translation>分离为孤岛 :</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Mode :</source>
        <translation>模式 :</translation>
    </message>
    <message>
        <source>X or Y</source>
        <translation>X 或 Y</translation>
    </message>
    <message>
        <source>X and Y</source>
        <translation>X 和 Y</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>面积</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Contourize</source>
        <translation>轮廓化</translation>
    </message>
    <message>
        <source>Accuracy           :</source>
        <translation>精度 :</translation>
    </message>
    <message>
        <source>Max Size          :</source>
        <translation>最大尺寸 :</translation>
    </message>
    <message>
        <source>Mode          :</source>
        <translation>模式 :</translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_Filter_Attributes</name>
    <message>
        <source>Attribute :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Value :</source>
        <translation>数值 :</translation>
    </message>
    <message>
        <source>Logic :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>All conditions (and)</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Any condition (or)</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Add</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Remove</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Attributes Filter</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_Filter_Searchpopup</name>
    <message>
        <source>Find :</source>
        <translation>查找 :</translation>
    </message>
    <message>
        <source>Search</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message numerus="yes">
        <source>%n feature(s) found</source>
        <translation type="unfinished">
            <numerusform />
        </translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_NFPRemoval</name>
    <message>
        <source>Work On</source>
        <translation>作用于</translation>
    </message>
    <message>
        <source>Copper</source>
        <translation>铜</translation>
    </message>
    <message>
        <source>Features</source>
        <translation>图形</translation>
    </message>
    <message>
        <source>Remove Undrilled Pads</source>
        <translation>删除无钻孔焊盘</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Apply to</source>
        <translation>应用于</translation>
    </message>
    <message>
        <source>ALL</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>选中</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Mark</source>
        <translation>标记</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Isolated</source>
        <translation>孤立</translation>
    </message>
    <message>
        <source>Drilled Over</source>
        <translation>被钻穿</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>重复</translation>
    </message>
    <message>
        <source>Covered</source>
        <translation>被覆盖</translation>
    </message>
    <message>
        <source>Drills</source>
        <translation>钻孔</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Layer error!</source>
        <translation>层错误！</translation>
    </message>
    <message>
        <source>PTH</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>PTH - Pressfit</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>NPTH</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Via - Laser</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Via</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Via - Photo</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>NFP Removal</source>
        <translation>非功能焊盘删除</translation>
    </message>
    <message numerus="yes">
        <source>%n NFP Removal layers processed</source>
        <translation>
            <numerusform>已处理 %n 个非功能焊盘删除层</numerusform>
        </translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_Ranges</name>
    <message>
        <source>Ranges</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>The ranges could not be saved; the change holds until the program closes.</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_ResultsHistogram</name>
    <message>
        <source>Results Histogram</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_ResultsViewer</name>
    <message>
        <source>All layers</source>
        <translation>全部层</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>No external editor is connected</source>
        <translation>未连接外部编辑器</translation>
    </message>
    <message>
        <source>Results Viewer</source>
        <translation>结果查看器</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>层</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Categories</source>
        <translation>类别</translation>
    </message>
    <message>
        <source>Meas:</source>
        <translation>测量值 :</translation>
    </message>
    <message>
        <source>Sv:</source>
        <translation>级别 :</translation>
    </message>
    <message>
        <source>First</source>
        <translation>第一个</translation>
    </message>
    <message>
        <source>&lt;---</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>---&gt;</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Last</source>
        <translation>最后一个</translation>
    </message>
    <message>
        <source>Index:</source>
        <translation>序号 :</translation>
    </message>
    <message>
        <source>Show All</source>
        <translation>全部显示</translation>
    </message>
    <message>
        <source>Selection</source>
        <translation>选中</translation>
    </message>
    <message>
        <source>Auto Zoom</source>
        <translation>自动缩放</translation>
    </message>
    <message>
        <source>Pan Only</source>
        <translation>仅平移</translation>
    </message>
    <message>
        <source>Replace layers</source>
        <translation>替换层</translation>
    </message>
    <message>
        <source>Keep layers</source>
        <translation>保留层</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>过滤</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Drill Checks</source>
        <translation>钻孔检查</translation>
    </message>
    <message>
        <source>Board-DrillChecks</source>
        <translation>板钻孔检查</translation>
    </message>
    <message>
        <source> Silk Screen Checks </source>
        <translation> 丝印检查</translation>
    </message>
    <message>
        <source> Solder Mask Check </source>
        <translation> 阻焊检查</translation>
    </message>
    <message>
        <source>Signal Layer Checks</source>
        <translation>信号层检查</translation>
    </message>
    <message>
        <source>Signal Layer Opt</source>
        <translation>信号层优化</translation>
    </message>
    <message>
        <source>Solder Mask Opt</source>
        <translation>阻焊优化</translation>
    </message>
    <message>
        <source>Power Ground Checks</source>
        <translation>电源地层检查</translation>
    </message>
    <message>
        <source> Power Ground Opt </source>
        <translation> 电源地层优化</translation>
    </message>
    <message>
        <source> Prepare Checks </source>
        <translation> 预检查</translation>
    </message>
    <message>
        <source> MRC </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Surface Analyzer</source>
        <translation>铜面分析</translation>
    </message>
    <message>
        <source>Pad Snapping</source>
        <translation>焊盘对齐</translation>
    </message>
    <message>
        <source>Advanced Teardrops Creation</source>
        <translation>高级泪滴生成</translation>
    </message>
    <message>
        <source>NFP Removal</source>
        <translation>非功能焊盘删除</translation>
    </message>
    <message>
        <source>Avoid Conductor DFM</source>
        <translation>导体避让优化</translation>
    </message>
    <message>
        <source>!!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>  </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Stale waivers</source>
        <translation>失效的豁免</translation>
    </message>
    <message>
        <source>These waivers match no hit of the shown run:</source>
        <translation>以下豁免与当前结果中的任何问题都不匹配： :</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>未处理</translation>
    </message>
    <message>
        <source>New only</source>
        <translation>仅新增</translation>
    </message>
    <message>
        <source>Waived</source>
        <translation>已豁免</translation>
    </message>
    <message>
        <source>Fixed</source>
        <translation>已修复</translation>
    </message>
    <message>
        <source>Waivers and stored runs are not available: %1</source>
        <translation>豁免和已存结果不可用：%1</translation>
    </message>
    <message>
        <source>Stored runs are not available: %1</source>
        <translation>已存结果不可用：%1</translation>
    </message>
    <message>
        <source>%1 waived, %2 waivers stale</source>
        <translation>已豁免 %1 个，失效豁免 %2 个</translation>
    </message>
    <message>
        <source>%1 waived, %2 waivers stale; %3 new, %4 unchanged, %5 fixed</source>
        <translation>已豁免 %1 个，失效豁免 %2 个；新增 %3 个，未变 %4 个，已修复 %5 个</translation>
    </message>
    <message>
        <source>Waiver files (*.json)</source>
        <translation>豁免文件 (*.json)</translation>
    </message>
    <message>
        <source>No waiver is stale.</source>
        <translation>没有失效的豁免。</translation>
    </message>
    <message>
        <source>%1 on %2: %3 (%4, %5)</source>
        <translation>%1，位于 %2：%3（%4，%5）</translation>
    </message>
    <message>
        <source>%1 between %2: %3 (%4, %5)</source>
        <translation>%1，位于 %2 之间：%3（%4，%5）</translation>
    </message>
    <message>
        <source>new</source>
        <translation>新增</translation>
    </message>
    <message>
        <source>unchanged</source>
        <translation>未变</translation>
    </message>
    <message>
        <source>waived: %1</source>
        <translation>已豁免：%1</translation>
    </message>
    <message>
        <source>fixed</source>
        <translation>已修复</translation>
    </message>
    <message>
        <source>%1 (%2, %3)</source>
        <translation>%1（%2，%3）</translation>
    </message>
    <message>
        <source>View:</source>
        <translation>视图 :</translation>
    </message>
    <message>
        <source>Compare with:</source>
        <translation>比较对象 :</translation>
    </message>
    <message>
        <source>Waive...</source>
        <translation>豁免...</translation>
    </message>
    <message>
        <source>Waivers</source>
        <translation>豁免</translation>
    </message>
    <message>
        <source>Stale waivers...</source>
        <translation>失效的豁免...</translation>
    </message>
    <message>
        <source>Export waivers...</source>
        <translation>导出豁免...</translation>
    </message>
    <message>
        <source>Import waivers...</source>
        <translation>导入豁免...</translation>
    </message>
    <message>
        <source>Waive</source>
        <translation>豁免</translation>
    </message>
    <message>
        <source>%n hits to waive</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reason:</source>
        <translation>原因 :</translation>
    </message>
    <message>
        <source>This hit</source>
        <translation>此问题</translation>
    </message>
    <message>
        <source>Every hit of this item between these two nets</source>
        <translation>这两个网络之间此项目的全部问题</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>A waiver needs a reason.</source>
        <translation>豁免必须填写原因。</translation>
    </message>
    <message>
        <source>Group by:</source>
        <translation>分组依据 :</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>项目</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>层</translation>
    </message>
    <message>
        <source>Net</source>
        <translation>网络</translation>
    </message>
    <message>
        <source>Find:</source>
        <translation>查找 :</translation>
    </message>
    <message>
        <source>Regular expression over the columns</source>
        <translation>按各列匹配的正则表达式</translation>
    </message>
    <message>
        <source>(no net)</source>
        <translation>（无网络）</translation>
    </message>
    <message>
        <source>Invalid expression: %1</source>
        <translation>无效的表达式：%1</translation>
    </message>
    <message>
        <source>%1 (%2, %n new)</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_SR_Edit</name>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Align</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Mirror</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>S&amp;R Edit Popup</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>illegal step &amp; repeat nesting </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Illegal step specified</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>There are overlapping pcss selected!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Steps are not aligned properly /n Different steps or step angle/mirror not match</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>angle must be in range of '0' to '360'!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The Modify Entry operation requires 1 step!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The Modify Entry operation requires only 1 step!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Single Select</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Rectangle Select</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Polygon Select</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Add step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Copy Select Step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Move Select Step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete Select Step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Rotate Select Step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Replace Select Step</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Mirror Select Step Horizontally</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Mirror Select Step Vertically</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Mirror Select Step Flippedly</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Modify Entry</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reduce S&amp;&amp;R nesting</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reduce S&amp;R nesting</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reduce S&amp;&amp;R highest level only</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reduce S&amp;R highest level only</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Align Left</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Align Right</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Align Top</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Align Bottom</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Center on X Axis</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Center on Y Axis</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack Left</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack Right</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack Top</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack Bottom</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack left and right</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack top and bottom</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack to center horisontally</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pack to center vertically</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Space evenly horizontal</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Space evenly vertical</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Align to grid</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Set Size</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Panel Size</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Set Margins</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Margins</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Offset X:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Offset Y:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Horiz gap:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Vert gap:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>X:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Y:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>DX:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>DY:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Width:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Height:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Left:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Right:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Top:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Bottom:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Step and Repeat Edit</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Step:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Angle:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Axis:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Step Datum</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Step Center</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Center of Set</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Keep Gap :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Table</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>NX:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>NY:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Keep S&amp;R :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Keep Margin :</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Operation will be performed on all steps.Continue?</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Selected Steps : %1</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_SignalLayerChecks</name>
    <message>
        <source>Test List</source>
        <translation>测试列表</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>加载</translation>
    </message>
    <message>
        <source>Signal Layer Check</source>
        <translation>信号层检查</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file! Do you want to overwrite?</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>illegal floating parameter</source>
        <translation>非法的浮点参数</translation>
    </message>
    <message>
        <source>WARNING!</source>
        <translation>警告！</translation>
    </message>
    <message>
        <source> is not exists !</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Please wait</source>
        <translation>请稍候</translation>
    </message>
    <message>
        <source>Processing</source>
        <translation>处理中</translation>
    </message>
    <message>
        <source>SignalLayer check terminated</source>
        <translation>信号层检查已终止</translation>
    </message>
    <message>
        <source>the service is busy</source>
        <translation>服务忙</translation>
    </message>
    <message>
        <source>The check-list service failed</source>
        <translation>检查服务失败</translation>
    </message>
    <message>
        <source>Save 2 db failed</source>
        <translation>保存到数据库失败</translation>
    </message>
    <message>
        <source>Save success</source>
        <translation>保存成功</translation>
    </message>
    <message>
        <source>Save failed</source>
        <translation>保存失败</translation>
    </message>
    <message>
        <source>DB connection failed</source>
        <translation>数据库连接失败</translation>
    </message>
    <message>
        <source>No stored check with id </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Apply to</source>
        <translation>应用于</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>选中</translation>
    </message>
    <message>
        <source>Check Missing Pads for Drills</source>
        <translation>检查钻孔缺失焊盘</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Use Compensated Rout</source>
        <translation>使用补偿后的锣带</translation>
    </message>
    <message>
        <source>Skeleton</source>
        <translation>骨架</translation>
    </message>
    <message>
        <source>Sort Spacing by Solder Mask</source>
        <translation>按阻焊区分间距</translation>
    </message>
    <message numerus="yes">
        <source>%n layers were processed</source>
        <translation>
            <numerusform>已处理 %n 个层</numerusform>
        </translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_SignalLayerOpt</name>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal floating parameter</source>
        <translation>非法的浮点参数</translation>
    </message>
    <message>
        <source>Floating parameter out of range Value </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source> is outside of (0, </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Apply to</source>
        <translation>应用于</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>选中</translation>
    </message>
    <message>
        <source>Signal Layer Optimization</source>
        <translation>信号层优化</translation>
    </message>
    <message>
        <source>SignalLayer opt terminated</source>
        <translation type="unfinished" />
    </message>
    <message numerus="yes">
        <source>%n layers were processed</source>
        <translation>
            <numerusform>已处理 %n 个层</numerusform>
        </translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_SolderMaskOpt</name>
    <message>
        <source>SolderMask opt terminated</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Clearance Opt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Coverage Opt</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Opt :</source>
        <translation>最佳 :</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>主要参数</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>高级参数</translation>
    </message>
    <message>
        <source>Advance</source>
        <translation>高级</translation>
    </message>
    <message>
        <source>Advanced Surplus</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>SMD Compensate Range</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Gas Range</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Range</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Value</source>
        <translation>数值</translation>
    </message>
    <message>
        <source>Add</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>WARNING!</source>
        <translation>警告！</translation>
    </message>
    <message>
        <source> is not exists !</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Changes: </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Solder Mask Optimization</source>
        <translation>阻焊优化</translation>
    </message>
    <message>
        <source>Use Existing Mask</source>
        <translation>使用现有阻焊</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Is Round</source>
        <translation>圆形</translation>
    </message>
    <message>
        <source>Apply to</source>
        <translation>应用于</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全部</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>选中</translation>
    </message>
    <message>
        <source>Fan Shave:</source>
        <translation>扇形削减 :</translation>
    </message>
    <message>
        <source>PTH:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Do Resize</source>
        <translation>调整大小</translation>
    </message>
    <message>
        <source>Use Shaves</source>
        <translation>使用削减</translation>
    </message>
    <message numerus="yes">
        <source>%n layers were processed</source>
        <translation>
            <numerusform>已处理 %n 个层</numerusform>
        </translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_Teardrops</name>
    <message>
        <source>Teardrop Line Width Ratio:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Type</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>Arc Angle:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>(0-20)</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Operate</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Drilled Pads</source>
        <translation>有钻孔焊盘</translation>
    </message>
    <message>
        <source>UNndrilled Pads</source>
        <translation>无钻孔焊盘</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>Illegal floating parameter : Empty text-box ! </source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Illegal floating parameter : </source>
        <translation>非法的浮点参数 :</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Filleted</source>
        <translation>圆角</translation>
    </message>
    <message>
        <source>Straight</source>
        <translation>直线</translation>
    </message>
    <message>
        <source>Triangular</source>
        <translation>三角形</translation>
    </message>
    <message>
        <source>Rounded</source>
        <translation>圆形</translation>
    </message>
    <message>
        <source>Oval</source>
        <translation>椭圆</translation>
    </message>
    <message>
        <source>Advanced Teardrop Creation</source>
        <translation>高级泪滴生成</translation>
    </message>
    <message>
        <source>TearDrop dfm terminated</source>
        <translation type="unfinished" />
    </message>
    <message numerus="yes">
        <source>%n layers were processed</source>
        <translation>
            <numerusform>已处理 %n 个层</numerusform>
        </translation>
    </message>
<message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_UserFilterList</name>
    <message>
        <source>User filter</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight All Pads</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight All Lines</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight All Surfaces</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Negative Features</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Smd Pads</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select Smd Pads</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Tear Drops</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Non Plated Holes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select Non Plated Holes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Plated Holes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select Plated Holes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Highlight Via Holes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select Via Holes</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>Widget_listpopup</name>
    <message>
        <source>*</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Symbol List</source>
        <translation type="unfinished" />
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>wc::HitTableModel</name>
    <message>
        <source>Index</source>
        <translation>序号</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>数值</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>层</translation>
    </message>
    <message>
        <source>Nets</source>
        <translation>网络</translation>
    </message>
    <message>
        <source>Required</source>
        <translation>要求值</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>差值</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>位置</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
<context>
    <name>wc::ListPopup</name>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>层</translation>
    </message>
    <message>
        <source>ERF</source>
        <translation>参数集</translation>
    </message>
<message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
    <message>
        <source>Illegal field value</source>
        <translation>字段值非法</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Template name:</source>
        <translation>模板名称 :</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source> have a same name file!</source>
        <translation> 已有同名文件！</translation>
    </message>
    <message>
        <source>Run globally</source>
        <translation>全局运行</translation>
    </message>
    <message>
        <source>Run on features on screen only</source>
        <translation>仅对屏幕内特征运行</translation>
    </message>
    <message>
        <source>Run on features inside profile</source>
        <translation>对外形内特征运行</translation>
    </message>
    <message>
        <source>Layer: </source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF: </source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>View Results</source>
        <translation>查看结果</translation>
    </message>
    <message>
        <source>No layers were processed</source>
        <translation>未处理任何层</translation>
    </message>
    <message>
        <source>%n layer  was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layer was processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>%n layers were processed</source>
        <translation>已处理 %n 个层</translation>
    </message>
    <message>
        <source>Ranges...</source>
        <translation>范围...</translation>
    </message>
    <message>
        <source>No results</source>
        <translation>无结果</translation>
    </message>
    <message>
        <source>Layer:</source>
        <translation>层 :</translation>
    </message>
    <message>
        <source>ERF:</source>
        <translation>参数集 :</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>View results</source>
        <translation>查看结果</translation>
    </message>
</context>
</TS>